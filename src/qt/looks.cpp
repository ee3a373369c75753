#include "qt/looks.h"

#include <QApplication>
#include <QCursor>
#include <QPainter>
#include <QPalette>

#include "platform/text/compare.h"
#include "qt/text.h"

namespace vyn::qt {

namespace looks_detail {

constexpr const char* kDesktopFonts[] = {"MS Sans Serif", "MS Shell Dlg", "MS Shell Dlg 2", "Microsoft Sans Serif",
                                         "Tahoma",        "Segoe UI",     "System",         "Default"};
constexpr const char* kFixedFonts[] = {"Courier", "Courier New", "Fixedsys", "Terminal", "Lucida Console", "Consolas"};
// The letters' height of the classic desktop font at 8 points, and a cell's height as a hundredth part of letters'.
constexpr int kClassicPixels = 11;
constexpr int kCellPercent = 120;

template <size_t N>
bool IsOneOf(const char* const (&names)[N], std::string_view name) {
    for (const char* each : names)
        if (SameText(each, name)) return true;
    return false;
}

struct DesktopColor {
    TColor color;
    QPalette::ColorGroup group;
    QPalette::ColorRole role;
};

constexpr DesktopColor kDesktopColors[] = {
    {clScrollBar, QPalette::Active, QPalette::Button},
    {clBackground, QPalette::Active, QPalette::Dark},
    {clActiveCaption, QPalette::Active, QPalette::Highlight},
    {clInactiveCaption, QPalette::Active, QPalette::Mid},
    {clMenu, QPalette::Active, QPalette::Window},
    {clWindow, QPalette::Active, QPalette::Base},
    {clWindowFrame, QPalette::Active, QPalette::Shadow},
    {clMenuText, QPalette::Active, QPalette::WindowText},
    {clWindowText, QPalette::Active, QPalette::WindowText},
    {clCaptionText, QPalette::Active, QPalette::HighlightedText},
    {clActiveBorder, QPalette::Active, QPalette::Window},
    {clInactiveBorder, QPalette::Active, QPalette::Window},
    {clAppWorkSpace, QPalette::Active, QPalette::Mid},
    {clHighlight, QPalette::Active, QPalette::Highlight},
    {clHighlightText, QPalette::Active, QPalette::HighlightedText},
    {clBtnFace, QPalette::Active, QPalette::Window},
    {clBtnShadow, QPalette::Active, QPalette::Mid},
    {clGrayText, QPalette::Disabled, QPalette::WindowText},
    {clBtnText, QPalette::Active, QPalette::ButtonText},
    {clInactiveCaptionText, QPalette::Active, QPalette::WindowText},
    {clBtnHighlight, QPalette::Active, QPalette::Light},
    {cl3DDkShadow, QPalette::Active, QPalette::Dark},
    {cl3DLight, QPalette::Active, QPalette::Midlight},
    {clInfoText, QPalette::Active, QPalette::ToolTipText},
    {clInfoBk, QPalette::Active, QPalette::ToolTipBase},
};

}  // namespace looks_detail

bool IsDesktopFontName(std::string_view name) { return looks_detail::IsOneOf(looks_detail::kDesktopFonts, name); }

bool SameGlyphs(const TFont& a, const TFont& b) {
    if (&a == &b) return true;
    if (a.Height() != b.Height() || a.Style() != b.Style()) return false;
    return a.Name() == b.Name() || (IsDesktopFontName(a.Name()) && IsDesktopFontName(b.Name()));
}

QFont ToQFont(const TFont& font) {
    using namespace looks_detail;
    QFont result = QApplication::font();
    int pixels = font.Height() < 0 ? -font.Height() : font.Height() * 100 / kCellPercent;
    if (pixels == 0) pixels = kClassicPixels;
    if (IsDesktopFontName(font.Name())) {
        result.setPixelSize(pixels);
    } else {
        result.setFamilies({ToQt(font.Name())});
        if (font.Pitch() == fpFixed || IsOneOf(kFixedFonts, font.Name())) {
            result.setStyleHint(QFont::Monospace);
            result.setFixedPitch(true);
        }
        result.setPixelSize(pixels);
    }
    if (font.Style().Contains(fsBold)) result.setBold(true);
    if (font.Style().Contains(fsItalic)) result.setItalic(true);
    if (font.Style().Contains(fsUnderline)) result.setUnderline(true);
    if (font.Style().Contains(fsStrikeOut)) result.setStrikeOut(true);
    return result;
}

QColor ToQColor(TColor color, const QPalette& palette) {
    const auto number = static_cast<uint32_t>(color);
    if (color == clDefault || color == clNone) return palette.color(QPalette::Active, QPalette::Window);
    if (number & 0x80000000u) {
        for (const looks_detail::DesktopColor& each : looks_detail::kDesktopColors)
            if (each.color == color) return palette.color(each.group, each.role);
        return palette.color(QPalette::Active, QPalette::Window);
    }
    return QColor(static_cast<int>(number & 0xFF), static_cast<int>((number >> 8) & 0xFF),
                  static_cast<int>((number >> 16) & 0xFF));
}

QColor ToQColor(TColor color) { return ToQColor(color, QApplication::palette()); }

QCursor ToQCursor(TCursor cursor) {
    switch (cursor) {
        case crNone:
            return Qt::BlankCursor;
        case crCross:
            return Qt::CrossCursor;
        case crIBeam:
            return Qt::IBeamCursor;
        case crSizeAll:  // crSize is its other name
            return Qt::SizeAllCursor;
        case crSizeNESW:
            return Qt::SizeBDiagCursor;
        case crSizeNS:
            return Qt::SizeVerCursor;
        case crSizeNWSE:
            return Qt::SizeFDiagCursor;
        case crSizeWE:
            return Qt::SizeHorCursor;
        case crUpArrow:
            return Qt::UpArrowCursor;
        case crHourGlass:
        case crSQLWait:
            return Qt::WaitCursor;
        case crDrag:
        case crMultiDrag:
            return Qt::DragMoveCursor;
        case crNoDrop:
        case crNo:
            return Qt::ForbiddenCursor;
        case crHSplit:
            return Qt::SplitHCursor;
        case crVSplit:
            return Qt::SplitVCursor;
        case crAppStart:
            return Qt::BusyCursor;
        case crHelp:
            return Qt::WhatsThisCursor;
        case crHandPoint:
            return Qt::PointingHandCursor;
        default:
            return Qt::ArrowCursor;
    }
}

QRect DrawBevel(QPainter& painter, QRect rect, bool raised, int width, const QPalette& palette) {
    // The lit side is a fainter shadow: white would be lost on light pages, and leave half a frame.
    const QColor dark = palette.color(QPalette::Mid);
    QColor light = dark;
    constexpr int kFaint = 100;
    light.setAlpha(kFaint);
    for (int i = 0; i < width && rect.width() > 0 && rect.height() > 0; ++i) {
        painter.setPen(raised ? light : dark);
        painter.drawLine(rect.topLeft(), rect.topRight());
        painter.drawLine(rect.topLeft(), rect.bottomLeft());
        painter.setPen(raised ? dark : light);
        painter.drawLine(rect.bottomLeft(), rect.bottomRight());
        painter.drawLine(rect.topRight(), rect.bottomRight());
        rect.adjust(1, 1, -1, -1);
    }
    return rect;
}

}  // namespace vyn::qt
