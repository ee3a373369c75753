#include "platform/text/numbers.h"

#include <locale.h>
#include <stdlib.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "platform/text/compare.h"
#include "platform/text/decimal.h"
#include "platform/text/exceptions.h"

namespace vyn {

namespace numbers_detail {

std::string_view WithoutBlanks(std::string_view text) {
    const auto blank = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
    while (!text.empty() && blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && blank(text.back())) text.remove_suffix(1);
    return text;
}

[[noreturn]] void RaiseInvalid(std::string_view text, const char* kind) {
    throw EConvertError("'" + AnsiString(text) + "' is not a valid " + kind + " value");
}

struct IntegerText {
    bool negative = false;
    int base = 10;
    std::string_view digits;
};

IntegerText SplitInteger(std::string_view text) {
    IntegerText result;
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        result.negative = text.front() == '-';
        text.remove_prefix(1);
    }
    if (!text.empty() && text.front() == '$') {
        result.base = 16;
        text.remove_prefix(1);
    } else if (text.size() > 1 && text[0] == '0' && UpperChar(text[1]) == 'X') {
        result.base = 16;
        text.remove_prefix(2);
    }
    result.digits = text;
    return result;
}

template <class Integer>
bool TryInteger(std::string_view text, Integer& value) {
    using Unsigned = std::make_unsigned_t<Integer>;
    const IntegerText parts = SplitInteger(text);
    Unsigned magnitude = 0;
    const char* const end = parts.digits.data() + parts.digits.size();
    const auto [stop, error] = std::from_chars(parts.digits.data(), end, magnitude, parts.base);
    if (parts.digits.empty() || error != std::errc() || stop != end) return false;
    const auto highest = static_cast<Unsigned>(std::numeric_limits<Integer>::max());
    if (parts.base == 10 && magnitude > highest + (parts.negative ? 1u : 0u)) return false;
    value = static_cast<Integer>(parts.negative ? Unsigned{0} - magnitude : magnitude);
    return true;
}

constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Sign, digits with one separator, exponent; turned into the notation with a point. False when it is nothing like it.
bool Normalise(std::string_view text, char separator, std::string& plain) {
    std::size_t at = 0;
    std::size_t digits = 0;
    plain.clear();
    if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
        if (text[0] == '-') plain += '-';
        ++at;
    }
    for (; at < text.size() && IsDigit(text[at]); ++at, ++digits) plain += text[at];
    if (at < text.size() && text[at] == separator) {
        plain += '.';
        for (++at; at < text.size() && IsDigit(text[at]); ++at, ++digits) plain += text[at];
    }
    if (digits == 0) return false;
    if (at == text.size()) return true;
    if (UpperChar(text[at]) != 'E') return false;
    plain += 'e';
    if (++at < text.size() && (text[at] == '-' || text[at] == '+')) plain += text[at++];
    if (at == text.size()) return false;
    for (; at < text.size() && IsDigit(text[at]); ++at) plain += text[at];
    return at == text.size();
}

// Whether a text in plain notation that is out of every range is so because it is too small.
bool IsTooSmall(std::string_view plain) {
    const std::size_t exponent = plain.find('e');
    if (exponent != std::string_view::npos) return plain[exponent + 1] == '-';
    const std::string_view whole = plain.substr(0, plain.find('.'));
    return whole.find_first_of("123456789") == std::string_view::npos;
}

bool ReadPlain(const std::string& plain, long double& value) {
    const char* const end = plain.data() + plain.size();
    long double read = 0;
    const auto [stop, error] = std::from_chars(plain.data(), end, read);
    if (error == std::errc::result_out_of_range) {
        if (!IsTooSmall(plain)) return false;
        // Denormals count as out of range there; the C library reads them, in a locale that writes a point.
        static const locale_t pointLocale = newlocale(LC_ALL_MASK, "C", nullptr);
        value = strtold_l(plain.c_str(), nullptr, pointLocale);
        return true;
    }
    if (error != std::errc() || stop != end || !std::isfinite(read)) return false;
    value = read;
    return true;
}

bool ReadPlain(const std::string& plain, double& value) {
    const char* const end = plain.data() + plain.size();
    double read = 0;
    const auto [stop, error] = std::from_chars(plain.data(), end, read);
    if (error == std::errc() && stop == end && std::isfinite(read)) {
        value = read;
        return true;
    }
    // Below the least double the wider type decides between zero and the least one.
    long double wide = 0;
    if (!ReadPlain(plain, wide) || std::fabs(wide) > 1) return false;
    value = static_cast<double>(wide);
    return true;
}

template <class Float>
bool TryFloat(std::string_view text, char separator, Float& value) {
    std::string plain;
    return Normalise(WithoutBlanks(text), separator, plain) && ReadPlain(plain, value);
}

template <class Float>
bool TryParse(std::string_view text, Float& value) {
    const std::string_view trimmed = WithoutBlanks(text);
    using Limits = std::numeric_limits<Float>;
    if (SameText(trimmed, "NAN"))
        value = Limits::quiet_NaN();
    else if (SameText(trimmed, "INF") || SameText(trimmed, "+INF"))
        value = Limits::infinity();
    else if (SameText(trimmed, "-INF"))
        value = -Limits::infinity();
    else
        return TryFloat(trimmed, '.', value);
    return true;
}

// to_chars gives the shortest digits in scientific notation; they are set out anew in the system's own way.
template <class Float>
AnsiString Shortest(Float value) {
    if (!std::isfinite(value)) return NonFiniteText(value);
    char buffer[64];
    const auto written = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific);
    std::string_view text(buffer, static_cast<std::size_t>(written.ptr - buffer));
    AnsiString result;
    if (text.front() == '-') {
        result = "-";
        text.remove_prefix(1);
    }
    const std::size_t mark = text.find('e');
    Decimal decimal;
    for (const char c : text.substr(0, mark))
        if (c != '.') decimal.digits += c;
    int exponent = 0;
    const std::size_t first = mark + (text[mark + 1] == '+' ? 2 : 1);
    std::from_chars(text.data() + first, text.data() + text.size(), exponent);
    decimal.point = exponent + 1;
    constexpr int kSmallestPlain = -4;
    constexpr int kLargestPlain = 17;
    if (decimal.digits == "0" || (exponent >= kSmallestPlain && exponent <= kLargestPlain))
        return result + PlainText(decimal, '.', '\0', -1);
    return result + ScientificText(decimal, '.', 0, ExponentSign::NegativeOnly);
}

}  // namespace numbers_detail

AnsiString IntToStr(std::int64_t value) {
    char buffer[24];
    const auto written = std::to_chars(buffer, buffer + sizeof buffer, value);
    return AnsiString(buffer, written.ptr);
}

AnsiString HexDigits(std::uint64_t value, int digits) {
    char buffer[24];
    const auto written = std::to_chars(buffer, buffer + sizeof buffer, value, 16);
    AnsiString text = UpperCase(std::string_view(buffer, static_cast<std::size_t>(written.ptr - buffer)));
    constexpr int kMostDigits = 32;
    const auto wanted = static_cast<std::size_t>(std::clamp(digits, 0, kMostDigits));
    return text.size() < wanted ? AnsiString(wanted - text.size(), '0') + text : text;
}

bool TryStrToInt(std::string_view text, std::int32_t& value) { return numbers_detail::TryInteger(text, value); }
bool TryStrToInt64(std::string_view text, std::int64_t& value) { return numbers_detail::TryInteger(text, value); }

std::int32_t StrToInt(std::string_view text) {
    std::int32_t value = 0;
    if (!TryStrToInt(text, value)) numbers_detail::RaiseInvalid(text, "integer");
    return value;
}

std::int64_t StrToInt64(std::string_view text) {
    std::int64_t value = 0;
    if (!TryStrToInt64(text, value)) numbers_detail::RaiseInvalid(text, "integer");
    return value;
}

std::int32_t StrToIntDef(std::string_view text, std::int32_t otherwise) {
    std::int32_t value = 0;
    return TryStrToInt(text, value) ? value : otherwise;
}

std::int64_t StrToInt64Def(std::string_view text, std::int64_t otherwise) {
    std::int64_t value = 0;
    return TryStrToInt64(text, value) ? value : otherwise;
}

bool TryStrToFloat(std::string_view text, double& value, const TFormatSettings& settings) {
    return numbers_detail::TryFloat(text, settings.DecimalSeparator, value);
}

bool TryStrToFloat(std::string_view text, long double& value, const TFormatSettings& settings) {
    return numbers_detail::TryFloat(text, settings.DecimalSeparator, value);
}

double StrToFloat(std::string_view text, const TFormatSettings& settings) {
    double value = 0;
    if (!TryStrToFloat(text, value, settings)) numbers_detail::RaiseInvalid(text, "floating point");
    return value;
}

double StrToFloatDef(std::string_view text, double otherwise, const TFormatSettings& settings) {
    double value = 0;
    return TryStrToFloat(text, value, settings) ? value : otherwise;
}

AnsiString ShortestSingle(float value) { return numbers_detail::Shortest(value); }
AnsiString ShortestDouble(double value) { return numbers_detail::Shortest(value); }
AnsiString ShortestExtended(long double value) { return numbers_detail::Shortest(value); }

bool TryParseExtended(std::string_view text, long double& value) { return numbers_detail::TryParse(text, value); }
bool TryParseDouble(std::string_view text, double& value) { return numbers_detail::TryParse(text, value); }

long double ParseExtended(std::string_view text) {
    long double value = 0;
    if (!TryParseExtended(text, value)) numbers_detail::RaiseInvalid(text, "floating point");
    return value;
}

double ParseDouble(std::string_view text) {
    double value = 0;
    if (!TryParseDouble(text, value)) numbers_detail::RaiseInvalid(text, "floating point");
    return value;
}

AnsiString ScaledCurrencyToStr(std::int64_t tenThousandths, const TFormatSettings& settings) {
    constexpr std::uint64_t kScale = 10000;
    constexpr int kDecimals = 4;
    const bool negative = tenThousandths < 0;
    const auto bits = static_cast<std::uint64_t>(tenThousandths);
    const std::uint64_t magnitude = negative ? 0 - bits : bits;
    AnsiString text = (negative ? "-" : "") + std::to_string(magnitude / kScale);
    AnsiString decimals = std::to_string(magnitude % kScale);
    decimals.insert(0, kDecimals - decimals.size(), '0');
    while (!decimals.empty() && decimals.back() == '0') decimals.pop_back();
    return decimals.empty() ? text : text + settings.DecimalSeparator + decimals;
}

bool TryStrToScaledCurrency(std::string_view text, std::int64_t& tenThousandths, const TFormatSettings& settings) {
    // The digits are counted, not computed, so that every amount the type holds is read exactly.
    std::string plain;
    if (!numbers_detail::Normalise(numbers_detail::WithoutBlanks(text), settings.DecimalSeparator, plain)) return false;
    Decimal decimal;
    bool negative = false;
    if (!ReadDecimal(plain, decimal, negative)) return false;
    constexpr int kDecimals = 4;
    constexpr int kMostDigits = 19;
    RoundAt(decimal, decimal.point + kDecimals);
    const int digits = decimal.digits.empty() ? 0 : decimal.point + kDecimals;
    if (digits > kMostDigits) return false;
    std::uint64_t magnitude = 0;
    for (int i = 0; i < digits; ++i) magnitude = magnitude * 10 + static_cast<unsigned>(decimal.DigitAt(i) - '0');
    const auto highest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()) + (negative ? 1u : 0u);
    if (magnitude > highest) return false;
    tenThousandths = static_cast<std::int64_t>(negative ? 0 - magnitude : magnitude);
    return true;
}

}  // namespace vyn
