#include "qt/text.h"

#include "platform/controls/shortcuts.h"
#include "platform/text/windows1252.h"

namespace vyn::qt {

namespace text_detail {

bool IsAscii(std::string_view text) {
    for (const char c : text)
        if (static_cast<unsigned char>(c) >= 0x80) return false;
    return true;
}

}  // namespace text_detail

QString ToQt(std::string_view text) {
    // Most texts are ASCII; the toolkit's own widening is the quickest.
    if (text_detail::IsAscii(text)) return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
    const WideString wide = AnsiToWide(text);
    return QString::fromUtf16(wide.data(), static_cast<qsizetype>(wide.size()));
}

AnsiString FromQt(const QString& text) {
    return WideToAnsi(
        std::u16string_view(reinterpret_cast<const char16_t*>(text.utf16()), static_cast<size_t>(text.size())));
}

QString WithoutMnemonic(const AnsiString& caption) { return ToQt(StripHotkey(caption)); }

QString WithPlainAmpersands(std::string_view text) {
    QString plain = ToQt(text);
    plain.replace(QLatin1Char('&'), QLatin1String("&&"));
    return plain;
}

}  // namespace vyn::qt
