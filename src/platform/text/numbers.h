#pragma once

#include <concepts>
#include <cstdint>
#include <string_view>
#include <type_traits>

#include "platform/text/format_settings.h"

// Numbers to text and back. Decimal work starts from 18 significant digits and rounds halves away from zero, so 0.125
// with two decimals is 0.13. Failing conversions raise EConvertError with the texts
// "'abc' is not a valid integer value", "'abc' is not a valid floating point value", "'abc' is not a valid currency
// value".
namespace vyn {

// -- integers: blanks may come first; a sign, then decimal digits, or $ or 0x and hexadecimal digits. Hexadecimal
// digits
//    fill the whole width: "$FFFFFFFF" is -1 for 32 bits.
AnsiString IntToStr(std::int64_t value);
AnsiString HexDigits(std::uint64_t value, int digits);
bool TryStrToInt(std::string_view text, std::int32_t& value);
bool TryStrToInt64(std::string_view text, std::int64_t& value);
std::int32_t StrToInt(std::string_view text);
std::int64_t StrToInt64(std::string_view text);
std::int32_t StrToIntDef(std::string_view text, std::int32_t otherwise);
std::int64_t StrToInt64Def(std::string_view text, std::int64_t otherwise);

// Upper-case hexadecimal digits of the value's own width (-1 as a 32-bit integer is FFFFFFFF), at least `digits`.
template <std::integral T>
AnsiString IntToHex(T value, int digits) {
    return HexDigits(static_cast<std::make_unsigned_t<T>>(value), digits);
}

// -- floating point
enum TFloatFormat { ffGeneral, ffExponent, ffFixed, ffNumber, ffCurrency };

inline constexpr int kDoubleDigits = 15;    // the significant digits that a double always keeps
inline constexpr int kExtendedDigits = 18;  // the most that any format works with

// General format with 15 significant digits: plain notation while at most 15 digits stand before the separator and the
// value is at least 0.0001, else 1.5E20, 1E-5. Not-a-number is NAN, the infinities INF and -INF, in every format.
AnsiString FloatToStr(long double value, const TFormatSettings& settings = FormatSettings());

// `precision` significant digits at most (1 to 18). `digits`: for ffGeneral and ffExponent the exponent's least number
// of digits (0 to 4), for the others the decimals (0 to 18). ffFixed, ffNumber and ffCurrency fall back to ffGeneral
// when more than `precision` digits stand before the separator.
AnsiString FloatToStrF(long double value, TFloatFormat format, int precision, int digits,
                       const TFormatSettings& settings = FormatSettings());

// The classic mask: 0 digit or zero, # digit or nothing, . decimal separator, "," anywhere asks for thousand
// separators, E+ E- e+ e- scientific (the zeros that follow are the exponent's least digits), 'x' "x" literal, ;
// sections (positive; negative; zero). A negative value without a section of its own takes the first one and a minus
// sign in front. What rounds to zero is zero. An empty section for negative values or zero means the first one. General
// format is used for an empty first section, and for values from 1E18 on in masks that are not scientific. 15
// significant digits.
AnsiString FormatFloat(std::string_view mask, long double value, const TFormatSettings& settings = FormatSettings());

// The whole text, blanks around it aside: sign, digits with the settings' decimal separator, exponent. No thousand
// separators. A value beyond the type's range is no number; one too small to tell from zero is zero.
bool TryStrToFloat(std::string_view text, double& value, const TFormatSettings& settings = FormatSettings());
bool TryStrToFloat(std::string_view text, long double& value, const TFormatSettings& settings = FormatSettings());
double StrToFloat(std::string_view text, const TFormatSettings& settings = FormatSettings());
double StrToFloatDef(std::string_view text, double otherwise, const TFormatSettings& settings = FormatSettings());

// The shortest decimal that reads back to the same value, whatever the locale: "." as separator, plain notation for
// exponents from -4 to 17, else 1.5E20. NAN, INF and -INF for the values that are no number; -0 keeps its sign.
AnsiString ShortestSingle(float value);
AnsiString ShortestDouble(double value);
AnsiString ShortestExtended(long double value);

// Reads what those write (and blanks around it); raises EConvertError.
bool TryParseExtended(std::string_view text, long double& value);
long double ParseExtended(std::string_view text);
bool TryParseDouble(std::string_view text, double& value);
double ParseDouble(std::string_view text);

// -- amounts, as an integer count of ten-thousandths (platform/values/currency.h gives them their type)
AnsiString ScaledCurrencyToStr(std::int64_t tenThousandths, const TFormatSettings& settings = FormatSettings());
// Decimals beyond the fourth are rounded, halves away from zero.
bool TryStrToScaledCurrency(std::string_view text, std::int64_t& tenThousandths,
                            const TFormatSettings& settings = FormatSettings());

}  // namespace vyn
