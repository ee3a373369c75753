#pragma once

#include <string_view>

#include "platform/controls/geometry.h"
#include "platform/controls/graphics.h"

namespace vyn {

// Sizes that only a toolkit knows: of text, of the desktop, of frames. Without one, approximations answer, good
// enough to lay out a form that nobody sees.
class TextMetrics {
  public:
    virtual ~TextMetrics() = default;
    // The size of one line of text.
    virtual TSize TextExtent(const TFont& font, std::string_view text) const;
    virtual int LineHeight(const TFont& font) const;
    // The screen.
    virtual int PixelsPerInch() const { return 96; }
    virtual TSize ScreenSize() const { return {1024, 768}; }
    // What a window's border and title take of its width and height; menu is the height of a menu line.
    virtual TSize FrameSize(bool hasBorder, bool sizeable, bool toolWindow) const;
    virtual int MenuHeight() const { return 20; }
    virtual int ScrollBarSize() const { return 16; }
};

// The toolkit's metrics stay the toolkit's; null goes back to the approximations.
void SetTextMetrics(const TextMetrics* metrics);
const TextMetrics& CurrentTextMetrics();

// The size of text with line breaks, wrapped at `width` pixels when that is above 0.
TSize MultiLineExtent(const TFont& font, std::string_view text, int width = 0);

}  // namespace vyn
