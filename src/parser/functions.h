#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "parser/operations.h"
#include "platform/objects/name_index.h"

namespace vyn {

// Functions by name: a sorted list of upper-case names, each with its routine. Names are found without regard to case.
class TFunctionList {
  public:
    // Raises EStringListError when the name is there.
    void Add(std::string_view name, TMathRoutine routine);
    // False when there is none.
    bool Remove(std::string_view name);
    // Null when there is none.
    TMathRoutine Find(std::string_view name) const;
    int Count() const { return static_cast<int>(entries_.size()); }
    // 0 to Count - 1, in the order of the names.
    const AnsiString& Name(int index) const { return entries_[static_cast<size_t>(index)].name; }

  private:
    struct Entry {
        AnsiString name;
        TMathRoutine routine;
    };
    void Reindex();

    std::vector<Entry> entries_;
    NameIndex index_;
};

// The functions that every TParserVyn knows; made once and shared.
//
// One argument: TAN SIN COS SINH COSH ARCTAN COTAN (radians), EXP LN LOG10 LOG2, SQR (the square), SQRT, ABS,
//   TRUNC and INT (toward zero), CEIL, FLOOR, ROUND (to nearest, ties to the even number), SIGN (-1, 0 or 1),
//   ARG and PH (the angle of the number as a complex one: 0, or pi for negative numbers),
//   HEAV (Heaviside's step: 1 from 0 on, else 0), ZERO (1 for 0, else 0),
//   RND (a random number from 0 up to the argument, itself excluded),
//   RANDOM (a random whole number from 0 up to the truncated argument, itself excluded; 0 when that is below 1).
// Two arguments: MAX MIN, POWER(base, exponent), INTPOWER(base, whole exponent), LOGN(base, number),
//   EUROS PTES CONTRAVALOR_EUROS CONTRAVALOR_PTES(flag, amount): between pesetas and euros at the fixed rate.
//
// Where there is no answer they raise what the processor would: EInvalidOp (SQRT(-1), LN(-1)), EZeroDivide (LN(0)),
// EOverflow.
const std::shared_ptr<const TFunctionList>& BuiltInOneParam();
const std::shared_ptr<const TFunctionList>& BuiltInTwoParam();

// What programs run without a record: a built-in function of one argument before its result is required to be finite;
// null for other routines.
double (*PlainFunctionOf(TMathRoutine routine))(double);
bool IsMax(TMathRoutine routine);
bool IsMin(TMathRoutine routine);

}  // namespace vyn
