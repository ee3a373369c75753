#pragma once

#include <string_view>

#include "platform/text/ansi_string.h"

// A number as decimal digits, the form in which numbers are rounded and set out as text. The room's own workshop; other
// rooms use platform/text/numbers.h. Pure functions, any thread.
namespace vyn {

// 0.DIGITS times ten to the power `point`: "123" with point 1 is 1.23. No leading zeros, no trailing ones after
// rounding; zero has no digits (or, where a text is asked for, counts as having none) and point 0.
struct Decimal {
    AnsiString digits;
    int point = 0;

    char DigitAt(int index) const {
        return index >= 0 && index < static_cast<int>(digits.size()) ? digits[static_cast<std::size_t>(index)] : '0';
    }
    bool IsZero() const { return digits.find_first_not_of('0') == AnsiString::npos; }
};

// The magnitude of a finite value, with 18 significant digits.
Decimal DecimalOf(long double value);

// A text in plain notation ("-12.5e3"); false when its exponent is beyond all bounds.
bool ReadDecimal(std::string_view plain, Decimal& decimal, bool& negative);

// Keeps the first `count` digits, rounding halves away from zero; below zero nothing is left.
void RoundAt(Decimal& decimal, int count);

// "1234.5". `thousands` of '\0' means no grouping; `decimals` below 0 means as many as there are.
AnsiString PlainText(const Decimal& decimal, char separator, char thousands, int decimals);

enum class ExponentSign { NegativeOnly, Always };

// "1.5E20", the exponent with at least `exponentDigits` digits.
AnsiString ScientificText(const Decimal& decimal, char separator, int exponentDigits, ExponentSign sign);

AnsiString ExponentText(int exponent, int exponentDigits, ExponentSign sign);

AnsiString NonFiniteText(long double value);  // NAN, INF, -INF

}  // namespace vyn
