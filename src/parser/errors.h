#pragma once

#include "platform/text/exceptions.h"

// What can be wrong with an expression, or happen while it is calculated.
namespace vyn {

VYN_EXCEPTION(EMathParserError, Exception);
VYN_EXCEPTION(ESyntaxError, EMathParserError);
VYN_EXCEPTION(EExpressionHasBlanks, EMathParserError);
VYN_EXCEPTION(EExpressionTooComplex, EMathParserError);
VYN_EXCEPTION(ETooManyNestings, EMathParserError);
VYN_EXCEPTION(EMissMatchingBracket, EMathParserError);
VYN_EXCEPTION(EBadName, EMathParserError);  // a function's name that is no identifier
VYN_EXCEPTION(EParserInternalError, EMathParserError);
VYN_EXCEPTION(EVarIsNull, EMathParserError);
VYN_EXCEPTION(EVarNotFound, EMathParserError);
VYN_EXCEPTION(EVarIsNotNumeric, EMathParserError);  // for hosts; a text that is no number raises EConvertError here

}  // namespace vyn
