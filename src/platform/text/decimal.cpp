#include "platform/text/decimal.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>

#include "platform/text/numbers.h"

namespace vyn {

namespace decimal_detail {

// Numbers of any use have exponents far inside; texts beyond are refused before their digits are counted.
constexpr int kMostExponent = 100000;

void Normalise(Decimal& decimal) {
    const std::size_t first = decimal.digits.find_first_not_of('0');
    if (first == AnsiString::npos) {
        decimal = {};
        return;
    }
    decimal.digits.erase(0, first);
    decimal.point -= static_cast<int>(first);
    decimal.digits.erase(decimal.digits.find_last_not_of('0') + 1);
}

}  // namespace decimal_detail

Decimal DecimalOf(long double value) {
    Decimal decimal;
    if (value == 0) return decimal;
    char buffer[64];
    const long double size = std::fabs(value);
    const auto asDouble = static_cast<double>(size);
    // The digits are the same, and of a double they are found many times faster.
    const auto written =
        static_cast<long double>(asDouble) == size
            ? std::to_chars(buffer, buffer + sizeof buffer, asDouble, std::chars_format::scientific,
                            kExtendedDigits - 1)
            : std::to_chars(buffer, buffer + sizeof buffer, size, std::chars_format::scientific, kExtendedDigits - 1);
    const std::string_view text(buffer, static_cast<std::size_t>(written.ptr - buffer));
    bool negative = false;
    ReadDecimal(text, decimal, negative);
    return decimal;
}

bool ReadDecimal(std::string_view plain, Decimal& decimal, bool& negative) {
    decimal = {};
    negative = !plain.empty() && plain.front() == '-';
    if (negative) plain.remove_prefix(1);
    int exponent = 0;
    const std::size_t mark = plain.find('e');
    if (mark != std::string_view::npos) {
        std::string_view digits = plain.substr(mark + 1);
        if (!digits.empty() && digits.front() == '+') digits.remove_prefix(1);
        const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
        if (read.ec != std::errc() || std::abs(exponent) > decimal_detail::kMostExponent) return false;
        plain = plain.substr(0, mark);
    }
    if (plain.size() > decimal_detail::kMostExponent) return false;
    const std::size_t separator = plain.find('.');
    decimal.digits = plain.substr(0, separator);
    decimal.point = static_cast<int>(decimal.digits.size()) + exponent;
    if (separator != std::string_view::npos) decimal.digits += plain.substr(separator + 1);
    decimal_detail::Normalise(decimal);
    return true;
}

void RoundAt(Decimal& decimal, int count) {
    if (count >= static_cast<int>(decimal.digits.size())) return;
    if (count < 0) {
        decimal = {};
        return;
    }
    const auto keep = static_cast<std::size_t>(count);
    const bool up = decimal.digits[keep] >= '5';
    decimal.digits.resize(keep);
    if (up) {
        std::size_t at = keep;
        while (at > 0 && decimal.digits[at - 1] == '9') decimal.digits[--at] = '0';
        if (at > 0) {
            ++decimal.digits[at - 1];
        } else {
            decimal.digits.insert(0, 1, '1');
            ++decimal.point;
        }
    }
    decimal_detail::Normalise(decimal);
}

AnsiString PlainText(const Decimal& decimal, char separator, char thousands, int decimals) {
    constexpr int kGroup = 3;
    const int whole = decimal.point;
    const int present = static_cast<int>(decimal.digits.size()) - whole;
    const int shown = decimals >= 0 ? decimals : decimal.IsZero() || present < 0 ? 0 : present;
    AnsiString text;
    text.reserve(static_cast<std::size_t>(std::max(whole, 1) + shown + 1));
    if (whole <= 0) text = "0";
    for (int i = 0; i < whole; ++i) {
        if (thousands != '\0' && i > 0 && (whole - i) % kGroup == 0) text += thousands;
        text += decimal.DigitAt(i);
    }
    if (shown > 0) text += separator;
    for (int i = 0; i < shown; ++i) text += decimal.DigitAt(whole + i);
    return text;
}

AnsiString ExponentText(int exponent, int exponentDigits, ExponentSign sign) {
    AnsiString digits = IntToStr(std::abs(exponent));
    if (static_cast<int>(digits.size()) < exponentDigits)
        digits.insert(0, static_cast<std::size_t>(exponentDigits) - digits.size(), '0');
    const char* const mark = exponent < 0 ? "-" : sign == ExponentSign::Always ? "+" : "";
    return mark + digits;
}

AnsiString ScientificText(const Decimal& decimal, char separator, int exponentDigits, ExponentSign sign) {
    AnsiString text(1, decimal.DigitAt(0));
    if (decimal.digits.size() > 1) {
        text += separator;
        text += decimal.digits.substr(1);
    }
    return text + 'E' + ExponentText(decimal.IsZero() ? 0 : decimal.point - 1, exponentDigits, sign);
}

AnsiString NonFiniteText(long double value) { return std::isnan(value) ? "NAN" : value < 0 ? "-INF" : "INF"; }

}  // namespace vyn
