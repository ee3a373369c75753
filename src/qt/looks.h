#pragma once

#include <QColor>
#include <QFont>
#include <QRect>

#include "platform/controls/colors.h"
#include "platform/controls/geometry.h"
#include "platform/controls/graphics.h"

class QCursor;
class QPainter;
class QPalette;

namespace vyn::qt {

// Fonts, colours and cursors of stored forms, as the desktop has them.
//
// The classic names of the desktop's own font stand for the desktop's font of today; all others are taken by name.
// Sizes are the stored ones, in pixels, so that captions fit where they were designed: a form is scaled as a whole,
// by the screen's dots an inch.
QFont ToQFont(const TFont& font);
// One of the classic names of the desktop's own font.
bool IsDesktopFontName(std::string_view name);
// The two look alike apart from their colour.
bool SameGlyphs(const TFont& a, const TFont& b);

// Desktop colours come from the palette, so that they are right on dark desktops too.
QColor ToQColor(TColor color, const QPalette& palette);
QColor ToQColor(TColor color);  // from the application's palette

QCursor ToQCursor(TCursor cursor);

inline QRect ToQRect(const TRect& rect) { return {rect.Left, rect.Top, rect.Width(), rect.Height()}; }

// A bevel of so many pixels along the inside of rect, in the palette's shades; gives what is left inside.
QRect DrawBevel(QPainter& painter, QRect rect, bool raised, int width, const QPalette& palette);

}  // namespace vyn::qt
