#pragma once

#include <cstddef>
#include <cstdint>

// The code page's table and the decoder of UTF-8, both usable while compiling. Windows-1252 leaves five bytes (81, 8D,
// 8F, 90, 9D) without a letter: here they stand for the C1 control of the same number, so that any byte survives a trip
// to Unicode and back.
namespace vyn {

inline constexpr char16_t kWindows1252High[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                  0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                  0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                  0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr char16_t AnsiToCodePoint(unsigned char byte) {
    return byte >= 0x80 && byte < 0xA0 ? kWindows1252High[byte - 0x80] : byte;
}

// The byte of a code point, or -1 when the code page has none.
constexpr int CodePointToAnsi(char32_t codePoint) {
    if (codePoint < 0x80 || (codePoint >= 0xA0 && codePoint <= 0xFF)) return static_cast<int>(codePoint);
    for (int i = 0; i < 32; ++i)
        if (kWindows1252High[i] == codePoint) return 0x80 + i;
    return -1;
}

// One decoded character: its code point and its length in bytes. A length of 0 means that no well-formed character
// starts there (stray continuation byte, overlong form, surrogate, beyond U+10FFFF, cut short).
struct Utf8Character {
    char32_t codePoint = 0;
    std::size_t length = 0;
};

constexpr Utf8Character DecodeUtf8(const char* text, std::size_t left) {
    if (left == 0) return {};
    const auto lead = static_cast<unsigned char>(text[0]);
    if (lead < 0x80) return {lead, 1};
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || left < length) return {};
    char32_t codePoint = lead & (length == 2 ? 0x1Fu : length == 3 ? 0x0Fu : 0x07u);
    for (std::size_t i = 1; i < length; ++i) {
        const auto next = static_cast<unsigned char>(text[i]);
        if ((next & 0xC0) != 0x80) return {};
        codePoint = (codePoint << 6) | (next & 0x3Fu);
    }
    const char32_t smallest = length == 2 ? 0x80 : length == 3 ? 0x800 : 0x10000;
    if (codePoint < smallest || codePoint > 0x10FFFF || (codePoint >= 0xD800 && codePoint <= 0xDFFF)) return {};
    return {codePoint, length};
}

}  // namespace vyn
