#include "platform/system/clipboard.h"

namespace vyn {

namespace clipboard_detail {

ClipboardPort* thePort = nullptr;
AnsiString theText;

}  // namespace clipboard_detail

void SetClipboardPort(ClipboardPort* port) { clipboard_detail::thePort = port; }

AnsiString TClipboard::AsText() const {
    return clipboard_detail::thePort ? clipboard_detail::thePort->Text() : clipboard_detail::theText;
}

void TClipboard::SetAsText(const AnsiString& text) {
    if (clipboard_detail::thePort)
        clipboard_detail::thePort->SetText(text);
    else
        clipboard_detail::theText = text;
}

bool TClipboard::HasText() const {
    return clipboard_detail::thePort ? clipboard_detail::thePort->HasText() : !clipboard_detail::theText.empty();
}

void TClipboard::Clear() {
    if (clipboard_detail::thePort)
        clipboard_detail::thePort->Clear();
    else
        clipboard_detail::theText.clear();
}

TClipboard* Clipboard() {
    static TClipboard clipboard;
    return &clipboard;
}

}  // namespace vyn
