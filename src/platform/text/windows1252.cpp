#include "platform/text/windows1252.h"

#include <algorithm>

#include <fmt/format.h>

#include "platform/text/exceptions.h"

namespace vyn {

namespace windows1252_detail {

constexpr char32_t kReplacement = 0xFFFD;

void AppendUtf8(std::string& result, char32_t codePoint) {
    if (codePoint < 0x80) {
        result += static_cast<char>(codePoint);
        return;
    }
    if (codePoint < 0x800) {
        result += static_cast<char>(0xC0 | (codePoint >> 6));
    } else {
        if (codePoint < 0x10000) {
            result += static_cast<char>(0xE0 | (codePoint >> 12));
        } else {
            result += static_cast<char>(0xF0 | (codePoint >> 18));
            result += static_cast<char>(0x80 | ((codePoint >> 12) & 0x3F));
        }
        result += static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
    }
    result += static_cast<char>(0x80 | (codePoint & 0x3F));
}

// The code point at `at`, which moves past it; a surrogate without its partner stands for itself.
char32_t NextCodePoint(std::u16string_view text, std::size_t& at) {
    const char32_t unit = text[at++];
    const bool leads = unit >= 0xD800 && unit <= 0xDBFF;
    if (!leads || at == text.size() || text[at] < 0xDC00 || text[at] > 0xDFFF) return unit;
    return 0x10000 + ((unit - 0xD800) << 10) + (text[at++] - 0xDC00);
}

constexpr bool IsSurrogate(char32_t codePoint) { return codePoint >= 0xD800 && codePoint <= 0xDFFF; }

[[noreturn]] void RaiseMalformed(std::string_view text, std::size_t at) {
    throw EConvertError(
        fmt::format("Malformed UTF-8: byte {:02X} at position {}", static_cast<unsigned char>(text[at]), at + 1));
}

}  // namespace windows1252_detail

bool TryUtf8ToAnsi(std::string_view text, AnsiString& result, std::size_t& position) {
    AnsiString converted;
    converted.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const Utf8Character character = DecodeUtf8(text.data() + at, text.size() - at);
        const int byte = character.length == 0 ? -1 : CodePointToAnsi(character.codePoint);
        if (byte < 0) {
            position = at + 1;
            return false;
        }
        converted += static_cast<char>(byte);
        at += character.length;
    }
    result = std::move(converted);
    position = 0;
    return true;
}

AnsiString Utf8ToAnsi(std::string_view text) {
    AnsiString result;
    std::size_t position = 0;
    if (TryUtf8ToAnsi(text, result, position)) return result;
    const std::size_t at = position - 1;
    const Utf8Character character = DecodeUtf8(text.data() + at, text.size() - at);
    if (character.length == 0) windows1252_detail::RaiseMalformed(text, at);
    // The message itself is Windows-1252 text and cannot show the character: it is named by its number.
    throw EConvertError(fmt::format("Character U+{:04X} at position {} does not exist in Windows-1252",
                                    static_cast<std::uint32_t>(character.codePoint), position));
}

AnsiString Utf8ToAnsiLossy(std::string_view text) {
    // Most texts are the same in both.
    if (std::all_of(text.begin(), text.end(), [](char c) { return static_cast<signed char>(c) >= 0; }))
        return AnsiString(text);
    AnsiString result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const Utf8Character character = DecodeUtf8(text.data() + at, text.size() - at);
        const int byte = character.length == 0 ? -1 : CodePointToAnsi(character.codePoint);
        result += byte < 0 ? '?' : static_cast<char>(byte);
        at += character.length == 0 ? 1 : character.length;
    }
    return result;
}

std::string AnsiToUtf8(std::string_view text) {
    std::string result;
    result.reserve(text.size() + text.size() / 8);
    for (const char c : text) windows1252_detail::AppendUtf8(result, AnsiToCodePoint(static_cast<unsigned char>(c)));
    return result;
}

WideString AnsiToWide(std::string_view text) {
    WideString result(text.size(), u'\0');
    for (std::size_t i = 0; i < text.size(); ++i) result[i] = AnsiToCodePoint(static_cast<unsigned char>(text[i]));
    return result;
}

AnsiString WideToAnsi(std::u16string_view text) {
    AnsiString result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const int byte = CodePointToAnsi(windows1252_detail::NextCodePoint(text, at));
        result += byte < 0 ? '?' : static_cast<char>(byte);
    }
    return result;
}

std::string WideToUtf8(std::u16string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const char32_t codePoint = windows1252_detail::NextCodePoint(text, at);
        const bool lone = windows1252_detail::IsSurrogate(codePoint);
        windows1252_detail::AppendUtf8(result, lone ? windows1252_detail::kReplacement : codePoint);
    }
    return result;
}

WideString Utf8ToWide(std::string_view text) {
    WideString result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const Utf8Character character = DecodeUtf8(text.data() + at, text.size() - at);
        if (character.length == 0) windows1252_detail::RaiseMalformed(text, at);
        if (character.codePoint < 0x10000) {
            result += static_cast<char16_t>(character.codePoint);
        } else {
            const char32_t beyond = character.codePoint - 0x10000;
            result += static_cast<char16_t>(0xD800 + (beyond >> 10));
            result += static_cast<char16_t>(0xDC00 + (beyond & 0x3FF));
        }
        at += character.length;
    }
    return result;
}

}  // namespace vyn
