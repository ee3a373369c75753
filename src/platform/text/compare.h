#pragma once

#include <cstddef>
#include <string_view>

#include "platform/text/ansi_string.h"

// Comparing and folding text. Two families: the plain names fold ASCII letters only (identifiers, parameter names),
// the Ansi names fold every Windows-1252 letter (values, captions, what users type). Comparing goes by the folded
// (upper-case) bytes, never by the environment's collation, so that stored orders are the same on every machine.
// Pure functions, any thread.
namespace vyn {

constexpr char UpperChar(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
constexpr char LowerChar(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
constexpr unsigned char AnsiUpperByte(unsigned char c) {
    if (c >= 'a' && c <= 'z') return static_cast<unsigned char>(c - 0x20);
    if (c >= 0xE0 && c != 0xF7 && c != 0xFF) return static_cast<unsigned char>(c - 0x20);  // F7 is the division sign
    if (c == 0xFF) return 0x9F;
    if (c == 0x9A || c == 0x9C || c == 0x9E) return static_cast<unsigned char>(c - 0x10);
    return c;
}
char AnsiUpperChar(char c);
char AnsiLowerChar(char c);

bool SameText(std::string_view a, std::string_view b);
int CompareText(std::string_view a, std::string_view b);  // negative, 0 or positive
bool AnsiSameText(std::string_view a, std::string_view b);
int AnsiCompareText(std::string_view a, std::string_view b);

AnsiString UpperCase(std::string_view text);
AnsiString LowerCase(std::string_view text);
AnsiString AnsiUpperCase(std::string_view text);
AnsiString AnsiLowerCase(std::string_view text);

// Blanks and control characters (every byte up to 32) are trimmed.
AnsiString Trim(std::string_view text);
AnsiString TrimLeft(std::string_view text);
AnsiString TrimRight(std::string_view text);

// For unordered_map<AnsiString, T, TextHash, TextEqual>: keys that differ only in ASCII case are one key, and find()
// takes a string_view without making a string.
struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const noexcept;
};

struct TextEqual {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const noexcept { return SameText(a, b); }
};

}  // namespace vyn
