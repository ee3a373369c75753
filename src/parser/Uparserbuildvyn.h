#pragma once

#include <functional>

#include "parser/errors.h"
#include "parser/functions.h"
#include "parser/operations.h"

// The compiler of expressions.
//
//   number    digits with "." and an exponent (2.5, .5, 1E-3), with a sign where an operand begins; PI
//   operators from the loosest: + then - then * then DIV then MOD then / then ^, each grouping from the left:
//             10-3-2 is 5, 100/10/5 is 2, 2^3^2 is 64; a-b+c is (a-b)+c, but a+b-c is a+(b-c), a*b/c is a*(b/c) and
//             2*7DIV2 is 2*(7DIV2)
//   minus     applies to the primary that follows, with its power: -2^2 is -4, 2^-1 is 0.5
//   calls     NAME(a), NAME(a,b)
//   brackets  (a)
//
// PI, DIV, MOD and the names of functions and variables are found in any letter case. No blanks. DIV and MOD need none
// around them (7MOD2, aDIVb): letters are taken for one name where there is a variable of that name, else they are cut
// at a DIV, or at a MOD, that leaves operands on both sides.
namespace vyn {

constexpr int MaxNestings = 20;  // brackets and calls inside each other
// Operations beside each other: the signs of one sum, of one of its products, or of one power.
constexpr int MaxOperationsPerLevel = 50;
// DIV and MOD inside one run of letters and digits that is no name as a whole.
constexpr int MaxKeywordsPerRun = 64;

// Asked for a name that no set holds; true when a set holds it now. May raise, which ends the compilation.
using VariableSearch = std::function<bool(const AnsiString& name)>;

// Compiles the text into the list, whose old contents go. An empty text gives an empty list. Work and memory are linear
// in the text's length.
//
// Failures are exceptions of EMathParserError; `failed` is set then, and the list is empty:
//   EExpressionHasBlanks   "Expression has blanks"
//   EMissMatchingBracket   "Missing brackets in expression"
//   ETooManyNestings       "Expression contains too many nestings"
//   EExpressionTooComplex  "Expression is too complex"
//   EVarIsNull             "Can't Build Variable " + name + " because is null"
//   ESyntaxError           "Error parsing expression:\r" + text, and "\r" + the part at fault where it is a part only
void ParseFunction(const AnsiString& text, const TParametresList& variables, const TFunctionList& oneParam,
                   const TFunctionList& twoParam, OperationList& operations, bool& failed,
                   const VariableSearch& search = {});

}  // namespace vyn
