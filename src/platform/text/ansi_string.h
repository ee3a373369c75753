#pragma once

#include <cstddef>
#include <string>

#include "platform/text/windows1252_table.h"

// The system's text types. AnsiString holds Windows-1252 bytes, one byte a character; WideString holds UTF-16 units.
// A literal with other than ASCII letters is written "posició"_w: the UTF-8 source text becomes Windows-1252 bytes
// while compiling, and a text that does not fit the code page does not compile.
namespace vyn {

using AnsiString = std::string;
using WideString = std::u16string;

namespace detail {

// The bytes of a _w literal. Public members, because a template parameter's type must have no hidden ones.
template <std::size_t N>
struct AnsiLiteral {
    char bytes[N] = {};
    std::size_t size = 0;

    consteval AnsiLiteral(const char (&text)[N]) {
        for (std::size_t at = 0; at + 1 < N;) {
            const Utf8Character character = DecodeUtf8(text + at, N - 1 - at);
            if (character.length == 0) throw "this literal is not well-formed UTF-8";
            const int byte = CodePointToAnsi(character.codePoint);
            if (byte < 0) throw "this literal has a character that Windows-1252 has not";
            bytes[size++] = static_cast<char>(byte);
            at += character.length;
        }
    }
};

}  // namespace detail

inline namespace literals {

template <detail::AnsiLiteral Literal>
AnsiString operator""_w() {
    return AnsiString(Literal.bytes, Literal.size);
}

}  // namespace literals
}  // namespace vyn
