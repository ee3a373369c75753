#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <vector>

#include "platform/text/decimal.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace float_format_detail {

constexpr int kSmallestPlainPoint = -3;  // 0.0001 is the smallest value in plain notation
constexpr int kMostExponentDigits = 4;

AnsiString General(Decimal decimal, bool negative, int precision, int exponentDigits, const TFormatSettings& settings) {
    RoundAt(decimal, precision);
    const bool plain = decimal.point <= precision && decimal.point >= kSmallestPlainPoint;
    const AnsiString text =
        plain ? PlainText(decimal, settings.DecimalSeparator, '\0', -1)
              : ScientificText(decimal, settings.DecimalSeparator, exponentDigits, ExponentSign::NegativeOnly);
    return negative && !decimal.IsZero() ? "-" + text : text;
}

// What General gives, by a shorter way for plain numbers that a double holds: 18 digits, rounded by halves to the
// precision, without zeros behind. Empty for others.
AnsiString PlainGeneral(long double value, int precision, const TFormatSettings& settings) {
    if (value == 0) return "0";
    const double size = std::fabs(static_cast<double>(value));
    if (static_cast<long double>(size) != std::fabs(value) || size < 1e-3 || size >= 1e15) return {};
    // d.ddddddddddddddddde+dd
    char buffer[64];
    const char* const end =
        std::to_chars(buffer, buffer + sizeof buffer, size, std::chars_format::scientific, kExtendedDigits - 1).ptr;
    char digits[kExtendedDigits + 1] = {'0', buffer[0]};
    std::copy_n(buffer + 2, kExtendedDigits - 1, digits + 2);
    const char* const exponent = buffer + kExtendedDigits + 2;
    int point = 0;
    std::from_chars(exponent + 1, end, point);
    if (*exponent == '-') point = -point;
    // digits[0] takes what is carried; the point stands behind digits[point].
    ++point;
    int count = kExtendedDigits;
    if (precision < count) {
        const bool up = digits[precision + 1] >= '5';
        count = precision;
        int at = count;
        if (up) {
            while (digits[at] == '9') digits[at--] = '0';
            ++digits[at];
        }
    }
    const bool carried = digits[0] != '0';
    if (point + (carried ? 1 : 0) > precision) return {};
    while (count > 0 && digits[count] == '0') --count;
    AnsiString text;
    text.reserve(kExtendedDigits + 2);
    if (value < 0) text += '-';
    const int first = carried ? 0 : 1;
    if (point < first)
        text += '0';
    else
        for (int i = first; i <= point; ++i) text += i <= count ? digits[i] : '0';
    if (count <= point) return text;
    text += settings.DecimalSeparator;
    for (int i = point + 1; i <= count; ++i) text += i < first ? '0' : digits[i];
    return text;
}

AnsiString Exponent(Decimal decimal, bool negative, int precision, int exponentDigits,
                    const TFormatSettings& settings) {
    RoundAt(decimal, precision);
    const bool minus = negative && !decimal.IsZero();
    AnsiString text(minus ? "-" : "");
    text += decimal.DigitAt(0);
    if (precision > 1) text += settings.DecimalSeparator;
    for (int i = 1; i < precision; ++i) text += decimal.DigitAt(i);
    const int exponent = decimal.IsZero() ? 0 : decimal.point - 1;
    return text + 'E' + ExponentText(exponent, exponentDigits, ExponentSign::Always);
}

// Where 1 stands for the amount and $ for the currency's text; the order is that of the settings' numbers.
constexpr std::array<const char*, 4> kAmountPatterns = {"$1", "1$", "$ 1", "1 $"};
constexpr std::array<const char*, 16> kNegativeAmountPatterns = {"($1)", "-$1",  "$-1",   "$1-",  "(1$)", "-1$",
                                                                 "1-$",  "1$-",  "-1 $",  "-$ 1", "1 $-", "$ 1-",
                                                                 "$ -1", "1- $", "($ 1)", "(1 $)"};

AnsiString Amount(const AnsiString& digits, bool negative, const TFormatSettings& settings) {
    const char* const pattern = negative
                                    ? kNegativeAmountPatterns[settings.NegCurrFormat % kNegativeAmountPatterns.size()]
                                    : kAmountPatterns[settings.CurrencyFormat % kAmountPatterns.size()];
    AnsiString text;
    for (const char c : std::string_view(pattern)) {
        if (c == '1')
            text += digits;
        else if (c == '$')
            text += settings.CurrencyString;
        else
            text += c;
    }
    return text;
}

// -- masks

// The mask's sections; an empty one stays in the list.
std::vector<std::string_view> SplitSections(std::string_view mask) {
    std::vector<std::string_view> sections;
    std::size_t start = 0;
    char quote = '\0';
    for (std::size_t i = 0; i < mask.size(); ++i) {
        const char c = mask[i];
        if (quote != '\0') {
            if (c == quote) quote = '\0';
        } else if (c == '\'' || c == '"') {
            quote = c;
        } else if (c == ';') {
            sections.push_back(mask.substr(start, i - start));
            start = i + 1;
        }
    }
    sections.push_back(mask.substr(start));
    return sections;
}

enum class MaskPart { Digit, Point, Exponent, Literal };

struct MaskToken {
    MaskPart part;
    char character = '\0';
};

// One section, taken apart.
struct Section {
    std::vector<MaskToken> tokens;
    int wholePlaces = 0;
    int decimalPlaces = 0;
    int leastWhole = 0;
    int leastDecimals = 0;
    bool thousands = false;
    bool scientific = false;
    char exponentLetter = 'E';
    ExponentSign exponentSign = ExponentSign::NegativeOnly;
    int exponentDigits = 0;
};

class SectionReader {
  public:
    explicit SectionReader(std::string_view text) : text_(text) {}

    Section Read() {
        while (at_ < text_.size()) ReadOne();
        if (firstZero_ >= 0) section_.leastWhole = section_.wholePlaces - firstZero_;
        return std::move(section_);
    }

  private:
    void ReadOne() {
        const char c = text_[at_++];
        switch (c) {
            case '0':
            case '#':
                ReadPlace(c == '0');
                break;
            case '.':
                if (!pointSeen_) section_.tokens.push_back({MaskPart::Point});
                pointSeen_ = true;
                break;
            case ',':
                section_.thousands = true;
                break;
            case '\'':
            case '"':
                ReadQuoted(c);
                break;
            case 'E':
            case 'e':
                ReadExponent(c);
                break;
            default:
                section_.tokens.push_back({MaskPart::Literal, c});
        }
    }

    void ReadPlace(bool zero) {
        section_.tokens.push_back({MaskPart::Digit});
        if (pointSeen_) {
            ++section_.decimalPlaces;
            if (zero) section_.leastDecimals = section_.decimalPlaces;
        } else {
            if (zero && firstZero_ < 0) firstZero_ = section_.wholePlaces;
            ++section_.wholePlaces;
        }
    }

    void ReadQuoted(char quote) {
        while (at_ < text_.size() && text_[at_] != quote) section_.tokens.push_back({MaskPart::Literal, text_[at_++]});
        if (at_ < text_.size()) ++at_;
    }

    void ReadExponent(char letter) {
        const bool sign = at_ < text_.size() && (text_[at_] == '+' || text_[at_] == '-');
        if (!sign || section_.scientific) {
            section_.tokens.push_back({MaskPart::Literal, letter});
            return;
        }
        section_.scientific = true;
        section_.exponentLetter = letter;
        section_.exponentSign = text_[at_++] == '+' ? ExponentSign::Always : ExponentSign::NegativeOnly;
        for (; at_ < text_.size() && text_[at_] == '0'; ++at_) ++section_.exponentDigits;
        section_.exponentDigits = std::min(section_.exponentDigits, kMostExponentDigits);
        section_.tokens.push_back({MaskPart::Exponent});
    }

    std::string_view text_;
    std::size_t at_ = 0;
    Section section_;
    bool pointSeen_ = false;
    int firstZero_ = -1;
};

// Rounds the number to what the section shows; the exponent of a scientific one is split off.
int RoundForSection(Decimal& decimal, const Section& section) {
    const int places = section.wholePlaces + section.decimalPlaces;
    if (!section.scientific) {
        RoundAt(decimal, std::min(kDoubleDigits, decimal.point + section.decimalPlaces));
        return 0;
    }
    RoundAt(decimal, std::min(kDoubleDigits, places));
    if (decimal.IsZero()) return 0;
    const int exponent = decimal.point - section.wholePlaces;
    decimal.point = section.wholePlaces;
    return exponent;
}

AnsiString WriteSection(const Section& section, const Decimal& decimal, int exponent, bool minus,
                        const TFormatSettings& settings) {
    constexpr int kGroup = 3;
    const int whole = decimal.IsZero() ? 0 : std::max(decimal.point, 0);
    const int wholeShown = std::max(whole, section.leastWhole);
    const int present = decimal.IsZero() ? 0 : static_cast<int>(decimal.digits.size()) - decimal.point;
    const int decimalsShown = std::min(section.decimalPlaces, std::max(present, section.leastDecimals));
    const char thousands = section.thousands && !section.scientific ? settings.ThousandSeparator : '\0';
    AnsiString text(minus ? "-" : "");
    // Writes the digits whose distance to the separator is from `from` down to `to`.
    const auto writeWhole = [&](int from, int to) {
        for (int distance = from; distance >= to; --distance) {
            text += decimal.IsZero() ? '0' : decimal.DigitAt(decimal.point - distance);
            if (thousands != '\0' && distance > 1 && (distance - 1) % kGroup == 0) text += thousands;
        }
    };
    int placesLeft = section.wholePlaces;
    int decimals = 0;
    bool pointPassed = false;
    for (const MaskToken token : section.tokens) {
        switch (token.part) {
            case MaskPart::Literal:
                text += token.character;
                break;
            case MaskPart::Exponent:
                text += section.exponentLetter;
                text += ExponentText(exponent, section.exponentDigits, section.exponentSign);
                break;
            case MaskPart::Point:
                if (section.wholePlaces == 0) writeWhole(wholeShown, 1);
                pointPassed = true;
                if (decimalsShown > 0) text += settings.DecimalSeparator;
                break;
            case MaskPart::Digit:
                if (pointPassed) {
                    if (decimals < decimalsShown) text += decimal.DigitAt(decimal.point + decimals);
                    ++decimals;
                } else {
                    // The first place takes all the digits that have no place of their own.
                    const int from = placesLeft == section.wholePlaces ? wholeShown : std::min(placesLeft, wholeShown);
                    writeWhole(from, placesLeft);
                    --placesLeft;
                }
                break;
        }
    }
    return text;
}

}  // namespace float_format_detail

AnsiString FloatToStr(long double value, const TFormatSettings& settings) {
    return FloatToStrF(value, ffGeneral, kDoubleDigits, 0, settings);
}

AnsiString FloatToStrF(long double value, TFloatFormat format, int precision, int digits,
                       const TFormatSettings& settings) {
    namespace own = float_format_detail;
    if (!std::isfinite(value)) return NonFiniteText(value);
    precision = std::clamp(precision, 1, kExtendedDigits);
    const int exponentDigits = std::clamp(digits, 0, own::kMostExponentDigits);
    const int decimals = std::clamp(digits, 0, kExtendedDigits);
    const bool negative = value < 0;
    if (format == ffGeneral)
        if (AnsiString text = own::PlainGeneral(value, precision, settings); !text.empty()) return text;
    Decimal decimal = DecimalOf(value);
    if (format == ffGeneral) return own::General(decimal, negative, precision, exponentDigits, settings);
    if (format == ffExponent) return own::Exponent(decimal, negative, precision, exponentDigits, settings);
    if (decimal.point > precision) return own::General(decimal, negative, precision, 0, settings);
    RoundAt(decimal, std::min(precision, decimal.point + decimals));
    const bool minus = negative && !decimal.IsZero();
    const char thousands = format == ffFixed ? '\0' : settings.ThousandSeparator;
    const AnsiString text = PlainText(decimal, settings.DecimalSeparator, thousands, decimals);
    if (format == ffCurrency) return own::Amount(text, minus, settings);
    return minus ? "-" + text : text;
}

AnsiString FormatFloat(std::string_view mask, long double value, const TFormatSettings& settings) {
    namespace own = float_format_detail;
    if (!std::isfinite(value)) return NonFiniteText(value);
    const std::vector<std::string_view> sections = own::SplitSections(mask);
    const auto has = [&](std::size_t index) { return index < sections.size() && !sections[index].empty(); };
    const bool negative = value < 0;
    const std::size_t chosen = value == 0 && has(2) ? 2 : negative && has(1) ? 1 : 0;
    if (!has(chosen)) return FloatToStr(value, settings);

    constexpr int kMostWholeDigits = 18;
    own::Section section = own::SectionReader(sections[chosen]).Read();
    Decimal decimal = DecimalOf(value);
    const bool noPlaces = section.wholePlaces + section.decimalPlaces == 0;
    if (section.scientific ? noPlaces : decimal.point > kMostWholeDigits) return FloatToStr(value, settings);
    int exponent = own::RoundForSection(decimal, section);
    const bool roundedToZero = decimal.IsZero() && value != 0;
    if (roundedToZero) {
        const std::size_t instead = has(2) ? 2 : 0;
        if (!has(instead)) return FloatToStr(0, settings);
        section = own::SectionReader(sections[instead]).Read();
        exponent = 0;
    }
    const bool minus = negative && chosen == 0 && !roundedToZero;
    return own::WriteSection(section, decimal, exponent, minus, settings);
}

}  // namespace vyn
