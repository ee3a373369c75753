#include "platform/values/currency.h"

#include <cmath>
#include <limits>

#include "platform/text/exceptions.h"

namespace vyn {

namespace currency_detail {

[[noreturn]] void RaiseOverflow() { throw EOverflow("Floating point overflow"); }

std::int64_t Rounded(long double tenThousandths) {
    constexpr long double kBound = 9223372036854775808.0L;  // 2 to the power 63
    const long double rounded = std::round(tenThousandths);
    if (!(rounded >= -kBound && rounded < kBound)) RaiseOverflow();
    return static_cast<std::int64_t>(rounded);
}

// A double's decimals end after its 15 or so significant digits: what lies a hair beside a half is meant to be the
// half.
long double Snapped(long double tenThousandths) {
    constexpr long double kSteps = 1024;
    const long double steps = tenThousandths * kSteps;
    const long double nearest = std::round(steps);
    const long double tolerance = std::fabs(tenThousandths) * std::numeric_limits<double>::epsilon() * kSteps;
    return std::fabs(steps - nearest) <= tolerance ? nearest / kSteps : tenThousandths;
}

__extension__ typedef __int128 Wide;  // products of two amounts need more than 64 bits

// Quotient to the nearest, halves away from zero.
std::int64_t Divided(Wide dividend, Wide divisor) {
    const bool negative = (dividend < 0) != (divisor < 0);
    const Wide magnitude = dividend < 0 ? -dividend : dividend;
    const Wide by = divisor < 0 ? -divisor : divisor;
    const Wide rounded = (magnitude + by / 2) / by;
    const Wide result = negative ? -rounded : rounded;
    using Limits = std::numeric_limits<std::int64_t>;
    if (result < Limits::min() || result > Limits::max()) RaiseOverflow();
    return static_cast<std::int64_t>(result);
}

[[noreturn]] void RaiseDivisionByZero() { throw EZeroDivide("Floating point division by zero"); }

}  // namespace currency_detail

Currency::Currency(long double amount)
    : Val(currency_detail::Rounded(currency_detail::Snapped(amount * static_cast<long double>(kScale)))) {}

Currency operator+(Currency a, Currency b) {
    Currency result;
    if (__builtin_add_overflow(a.Val, b.Val, &result.Val)) currency_detail::RaiseOverflow();
    return result;
}

Currency operator-(Currency a, Currency b) {
    Currency result;
    if (__builtin_sub_overflow(a.Val, b.Val, &result.Val)) currency_detail::RaiseOverflow();
    return result;
}

Currency operator-(Currency a) { return Currency() - a; }

Currency operator*(Currency a, Currency b) {
    return Currency::FromScaled(
        currency_detail::Divided(static_cast<currency_detail::Wide>(a.Val) * b.Val, Currency::kScale));
}

Currency operator*(Currency a, double factor) {
    return Currency::FromScaled(
        currency_detail::Rounded(currency_detail::Snapped(static_cast<long double>(a.Val) * factor)));
}

Currency operator/(Currency a, Currency b) {
    if (b.Val == 0) currency_detail::RaiseDivisionByZero();
    return Currency::FromScaled(
        currency_detail::Divided(static_cast<currency_detail::Wide>(a.Val) * Currency::kScale, b.Val));
}

Currency operator/(Currency a, double divisor) {
    if (divisor == 0) currency_detail::RaiseDivisionByZero();
    return Currency::FromScaled(
        currency_detail::Rounded(currency_detail::Snapped(static_cast<long double>(a.Val) / divisor)));
}

AnsiString CurrToStr(Currency value, const TFormatSettings& settings) {
    return ScaledCurrencyToStr(value.Val, settings);
}

AnsiString CurrToStrF(Currency value, TFloatFormat format, int digits, const TFormatSettings& settings) {
    return FloatToStrF(value.ToExtended(), format, kExtendedDigits, digits, settings);
}

bool TryStrToCurr(std::string_view text, Currency& value, const TFormatSettings& settings) {
    return TryStrToScaledCurrency(text, value.Val, settings);
}

Currency StrToCurr(std::string_view text, const TFormatSettings& settings) {
    Currency value;
    if (!TryStrToCurr(text, value, settings))
        throw EConvertError("'" + AnsiString(text) + "' is not a valid currency value");
    return value;
}

}  // namespace vyn
