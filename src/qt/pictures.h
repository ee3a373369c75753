#pragma once

#include <QImage>
#include <QPixmap>

#include "platform/controls/bit_buttons.h"
#include "platform/controls/pictures.h"

class QPainter;
class QWidget;

namespace vyn::qt {

// Pictures for drawing. Those of formats that the system does not decode are decoded by the toolkit; a picture that
// nobody can decode is a null image.
QImage ToQImage(const PixelImage& pixels);
// The colour of the lower left pixel is see-through.
QImage ToTransparentImage(const TBitmap& bitmap);
QImage ToQImage(const TGraphic& graphic, bool transparent);

// One of the pictures side by side of a button's glyph; a disabled one that is missing is the first in grey.
QPixmap GlyphPixmap(const TBitmap& glyph, int count, bool enabled, bool down);

// Draws picture and caption of a button side by side (or one above the other), in the middle of the area or `margin`
// pixels from the edge at which the picture is; -1 is the middle, and for `spacing` the usual gap.
void DrawGlyphAndText(QPainter& painter, const QRect& area, const QPixmap& picture, const AnsiString& caption,
                      TButtonLayout layout, int margin, int spacing, const QWidget& widget, bool pressed);

}  // namespace vyn::qt
