#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/text/ansi_string.h"

// Conversions between the system's Windows-1252 text, UTF-8 (at the toolkit, the providers and the program's input and
// output) and UTF-16. Every one of the 256 bytes survives a round trip. Pure functions, any thread.
namespace vyn {

AnsiString Utf8ToAnsi(std::string_view text);  // raises EConvertError with the character and its 1-based byte position

// False when the text is malformed or has a character that the code page lacks; `position` is then its 1-based byte
// position and `result` is left alone. On success `position` is 0.
bool TryUtf8ToAnsi(std::string_view text, AnsiString& result, std::size_t& position);

AnsiString Utf8ToAnsiLossy(std::string_view text);  // '?' for each character that does not fit and each malformed byte
std::string AnsiToUtf8(std::string_view text);

WideString AnsiToWide(std::string_view text);
AnsiString WideToAnsi(std::u16string_view text);   // '?' for each character that does not fit (a pair gives one)
std::string WideToUtf8(std::u16string_view text);  // a lone surrogate becomes U+FFFD
WideString Utf8ToWide(std::string_view text);      // raises EConvertError on malformed UTF-8

}  // namespace vyn
