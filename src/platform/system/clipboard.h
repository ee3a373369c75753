#pragma once

#include "platform/text/ansi_string.h"

namespace vyn {

// The toolkit's clipboard.
class ClipboardPort {
  public:
    virtual ~ClipboardPort() = default;
    virtual bool HasText() const = 0;
    virtual AnsiString Text() const = 0;
    virtual void SetText(const AnsiString& text) = 0;
    virtual void Clear() = 0;
};
// The port stays the toolkit's; null goes back to a clipboard in memory.
void SetClipboardPort(ClipboardPort* port);

// What users copy and paste. Main thread only.
class TClipboard {
  public:
    AnsiString AsText() const;  // empty without text
    void SetAsText(const AnsiString& text);
    bool HasText() const;
    void Clear();
};
TClipboard* Clipboard();

}  // namespace vyn
