#pragma once

#include <QString>
#include <string_view>

#include "platform/text/ansi_string.h"

namespace vyn::qt {

// The one place where the system's text (Windows-1252) becomes the toolkit's and back. Each Windows-1252 character is
// one UTF-16 unit, so positions are the same on both sides; what the code page lacks becomes "?" on the way back.
QString ToQt(std::string_view text);
AnsiString FromQt(const QString& text);

// A caption for widgets that know no mnemonics: "&" taken away, "&&" made one.
QString WithoutMnemonic(const AnsiString& caption);
// A text in which no "&" means anything, for widgets that know mnemonics.
QString WithPlainAmpersands(std::string_view text);

}  // namespace vyn::qt
