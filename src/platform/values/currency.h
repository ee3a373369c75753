#pragma once

#include <compare>
#include <concepts>
#include <cstdint>
#include <string_view>

#include "platform/text/numbers.h"

// An amount with four exact decimals: Val counts ten-thousandths. Results round to the nearest ten-thousandth, halves
// away from zero (0.00005 is 0.0001, -0.00005 is -0.0001), also where a double lies just beside the half that its
// decimal text says (1.00015 is 1.0002). Never the half-to-even rule: amounts round as people do on paper. What does
// not fit raises EOverflow "Floating point overflow".
namespace vyn {

struct Currency {
    static constexpr std::int64_t kScale = 10000;

    std::int64_t Val = 0;

    constexpr Currency() = default;
    explicit Currency(long double amount);  // raises EOverflow for what does not fit and for not-a-number
    template <std::floating_point T>
    explicit Currency(T amount) : Currency(static_cast<long double>(amount)) {}
    template <std::integral T>
    explicit Currency(T units) : Currency(static_cast<long double>(units)) {}

    static constexpr Currency FromScaled(std::int64_t tenThousandths) {
        Currency result;
        result.Val = tenThousandths;
        return result;
    }

    double ToDouble() const { return static_cast<double>(static_cast<long double>(Val) / kScale); }
    long double ToExtended() const { return static_cast<long double>(Val) / kScale; }

    friend constexpr bool operator==(Currency a, Currency b) = default;
    friend constexpr auto operator<=>(Currency a, Currency b) = default;
};

Currency operator+(Currency a, Currency b);
Currency operator-(Currency a, Currency b);
Currency operator-(Currency a);
Currency operator*(Currency a, Currency b);
Currency operator*(Currency a, double factor);
Currency operator/(Currency a, Currency b);  // raises EZeroDivide "Floating point division by zero"
Currency operator/(Currency a, double divisor);

// All the decimals that are not zero, with the settings' decimal separator and no thousand separators.
AnsiString CurrToStr(Currency value, const TFormatSettings& settings = FormatSettings());
AnsiString CurrToStrF(Currency value, TFloatFormat format, int digits,
                      const TFormatSettings& settings = FormatSettings());

// Raises EConvertError "'x' is not a valid currency value".
Currency StrToCurr(std::string_view text, const TFormatSettings& settings = FormatSettings());
bool TryStrToCurr(std::string_view text, Currency& value, const TFormatSettings& settings = FormatSettings());

}  // namespace vyn
