#pragma once

#include "platform/streams/stream.h"

namespace vyn {

// The text form of a stored component (docs/formats/form-text.md): one line a property, made for people, diffs and
// merges. Text is UTF-8 on the text side and Windows-1252 inside.

// A whole binary form, from the stream's position, as text. Raises EReadError for what is no form, and
// EConvertError for values that text cannot give back (a number that is not finite).
std::string BinaryToText(TStream& binary);

// The bytes of a text form. Errors raise EParserError with the line and what was expected; nothing is written then.
void TextToBinary(std::string_view utf8Text, TStream& binary);

// The bytes start with the signature of a form.
bool IsBinaryForm(std::string_view bytes);

}  // namespace vyn
