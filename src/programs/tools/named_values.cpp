#include "programs/tools/named_values.h"

#include "foundation/Uparametres.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"

namespace vyn {

namespace named_values_detail {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

size_t SkipDigits(std::string_view text, size_t at) {
    while (at < text.size() && IsDigit(text[at])) ++at;
    return at;
}

size_t SkipSign(std::string_view text, size_t at) {
    return at < text.size() && (text[at] == '-' || text[at] == '+') ? at + 1 : at;
}

enum class Spelling { NoNumber, Whole, Floating };

Spelling SpellingOf(std::string_view text) {
    size_t at = SkipSign(text, 0);
    const size_t wholeEnd = SkipDigits(text, at);
    size_t digits = wholeEnd - at;
    at = wholeEnd;
    if (digits > 0 && at == text.size()) return Spelling::Whole;
    if (at < text.size() && text[at] == '.') {
        const size_t end = SkipDigits(text, at + 1);
        digits += end - at - 1;
        at = end;
    }
    if (digits == 0) return Spelling::NoNumber;
    if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
        const size_t begin = SkipSign(text, at + 1);
        at = SkipDigits(text, begin);
        if (at == begin) return Spelling::NoNumber;
    }
    return at == text.size() ? Spelling::Floating : Spelling::NoNumber;
}

// Dates are spelled in full; what looks otherwise is for people, and so a text.
bool TryDate(std::string_view text, TDateTime& value) {
    constexpr size_t kDateLength = 10;
    if (text.size() < kDateLength || (text.size() > kDateLength && text[kDateLength] != 'T')) return false;
    return TryFromIso8601(text, value);
}

Variant Unquoted(std::string_view inside) {
    AnsiString result;
    for (size_t i = 0; i < inside.size(); ++i) {
        result += inside[i];
        if (inside[i] == '\'' && i + 1 < inside.size() && inside[i + 1] == '\'') ++i;
    }
    return Variant(std::move(result));
}

Variant ParseValue(std::string_view text) {
    if (text == "null") return Variant::Null();
    if (text == "true" || text == "false") return Variant(text == "true");
    if (text.size() >= 2 && text.front() == '\'' && text.back() == '\'')
        return Unquoted(text.substr(1, text.size() - 2));
    const Spelling spelling = SpellingOf(text);
    if (spelling != Spelling::NoNumber) {
        if (std::int32_t integer = 0; spelling == Spelling::Whole && TryStrToInt(text, integer))
            return Variant(integer);
        return Variant(ParseDouble(text));
    }
    if (TDateTime date; TryDate(text, date)) return Variant(date);
    return Variant(AnsiString(text));
}

}  // namespace named_values_detail

bool IsNamedValue(const std::string& utf8Text) {
    const size_t at = utf8Text.find('=');
    return at != std::string::npos && at > 0;
}

NamedValue ParseNamedValue(const std::string& utf8Text) {
    const AnsiString text = Utf8ToAnsi(utf8Text);
    if (!IsNamedValue(utf8Text)) throw EConvertError("NAME=VALUE was expected instead of '" + text + "'");
    const size_t at = text.find('=');
    return {text.substr(0, at), named_values_detail::ParseValue(std::string_view(text).substr(at + 1))};
}

void AddNamedValues(const std::vector<std::string>& utf8Texts, TParametres& set) {
    for (const std::string& text : utf8Texts) {
        const NamedValue named = ParseNamedValue(text);
        set.AddParam(named.Name, named.Value);
    }
}

}  // namespace vyn
