#include "qt/pictures.h"

#include <QApplication>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>
#include <QWidget>
#include <algorithm>

#include "platform/objects/class_info.h"
#include "platform/text/exceptions.h"
#include "qt/text.h"

namespace vyn::qt {

namespace picture_detail {

QImage FromBytes(const AnsiString& bytes) {
    return QImage::fromData(reinterpret_cast<const uchar*>(bytes.data()), static_cast<int>(bytes.size()));
}

QImage Masked(QImage image, TColor color) {
    const auto number = static_cast<uint32_t>(color);
    const QRgb clear = qRgb(static_cast<int>(number & 0xFF), static_cast<int>((number >> 8) & 0xFF),
                            static_cast<int>((number >> 16) & 0xFF));
    image = image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x)
            if ((line[x] & RGB_MASK) == (clear & RGB_MASK)) line[x] = 0;
    }
    return image;
}

// Between picture and caption, for buttons that leave it to us.
constexpr int kUsualSpacing = 4;

enum GlyphPlace { Up = 0, Disabled = 1, Pressed = 2 };

}  // namespace picture_detail

QImage ToQImage(const PixelImage& pixels) {
    if (pixels.Width <= 0 || pixels.Height <= 0) return {};
    const QImage shared(reinterpret_cast<const uchar*>(pixels.Pixels.data()), pixels.Width, pixels.Height,
                        pixels.Width * static_cast<int>(sizeof(uint32_t)), QImage::Format_ARGB32);
    return shared.copy();
}

QImage ToTransparentImage(const TBitmap& bitmap) {
    if (bitmap.Empty()) return {};
    return picture_detail::Masked(ToQImage(bitmap.Pixels()), bitmap.TransparentColor());
}

QImage ToQImage(const TGraphic& graphic, bool transparent) {
    if (graphic.Empty()) return {};
    try {
        if (const auto* bitmap = ObjectCast<TBitmap>(&graphic))
            return transparent || bitmap->Transparent() ? ToTransparentImage(*bitmap) : ToQImage(bitmap->Pixels());
        if (ObjectCast<TIcon>(&graphic)) {
            const DecodedIcon icon = DecodeIco(graphic.FileBytes());
            return icon.Png.empty() ? ToQImage(icon.Image) : picture_detail::FromBytes(icon.Png);
        }
    } catch (const Exception&) {
        return {};  // a picture that cannot be decoded is shown as none
    }
    return picture_detail::FromBytes(graphic.FileBytes());
}

QPixmap GlyphPixmap(const TBitmap& glyph, int count, bool enabled, bool down) {
    const QImage strip = ToTransparentImage(glyph);
    if (strip.isNull()) return {};
    count = std::max(count, 1);
    const int width = strip.width() / count;
    int place = picture_detail::Up;
    if (!enabled && count > picture_detail::Disabled)
        place = picture_detail::Disabled;
    else if (down && count > picture_detail::Pressed)
        place = picture_detail::Pressed;
    const QPixmap pixmap = QPixmap::fromImage(strip.copy(place * width, 0, width, strip.height()));
    if (enabled || place == picture_detail::Disabled) return pixmap;
    QStyleOption option;
    option.palette = QApplication::palette();
    return QApplication::style()->generatedIconPixmap(QIcon::Disabled, pixmap, &option);
}

void DrawGlyphAndText(QPainter& painter, const QRect& area, const QPixmap& picture, const AnsiString& caption,
                      TButtonLayout layout, int margin, int spacing, const QWidget& widget, bool pressed) {
    const QStyle* style = widget.style();
    const bool enabled = widget.isEnabled();
    const QString text = ToQt(caption);
    constexpr int kTextFlags = Qt::AlignCenter | Qt::TextShowMnemonic;
    const QSize textSize =
        text.isEmpty() ? QSize() : style->itemTextRect(widget.fontMetrics(), area, kTextFlags, enabled, text).size();
    const QSize pictureSize = picture.isNull() ? QSize() : picture.size() / picture.devicePixelRatio();
    if (text.isEmpty() || picture.isNull()) spacing = 0;
    if (spacing < 0) spacing = picture_detail::kUsualSpacing;
    const bool beside = layout == blGlyphLeft || layout == blGlyphRight;
    const QSize whole = beside ? QSize(pictureSize.width() + spacing + textSize.width(),
                                       std::max(pictureSize.height(), textSize.height()))
                               : QSize(std::max(pictureSize.width(), textSize.width()),
                                       pictureSize.height() + spacing + textSize.height());
    QRect box = QStyle::alignedRect(Qt::LeftToRight, Qt::AlignCenter, whole, area);
    if (margin >= 0 && !picture.isNull()) {
        switch (layout) {
            case blGlyphLeft:
                box.moveLeft(area.left() + margin);
                break;
            case blGlyphRight:
                box.moveRight(area.right() - margin);
                break;
            case blGlyphTop:
                box.moveTop(area.top() + margin);
                break;
            case blGlyphBottom:
                box.moveBottom(area.bottom() - margin);
                break;
        }
    }
    if (pressed) box.translate(1, 1);
    // Captions of buttons beside each other stand on one line, whether they have pictures or not.
    const auto middle = [&](int height) { return area.top() + (area.height() - height) / 2 + (pressed ? 1 : 0); };
    QRect pictureBox(QPoint(), pictureSize);
    QRect textBox(QPoint(), textSize);
    switch (layout) {
        case blGlyphLeft:
            pictureBox.moveTopLeft({box.left(), middle(pictureSize.height())});
            textBox.moveTopLeft({box.right() + 1 - textSize.width(), middle(textSize.height())});
            break;
        case blGlyphRight:
            textBox.moveTopLeft({box.left(), middle(textSize.height())});
            pictureBox.moveTopLeft({box.right() + 1 - pictureSize.width(), middle(pictureSize.height())});
            break;
        case blGlyphTop:
            pictureBox.moveTopLeft({box.left() + (box.width() - pictureSize.width()) / 2, box.top()});
            textBox.moveTopLeft(
                {box.left() + (box.width() - textSize.width()) / 2, box.bottom() + 1 - textSize.height()});
            break;
        case blGlyphBottom:
            textBox.moveTopLeft({box.left() + (box.width() - textSize.width()) / 2, box.top()});
            pictureBox.moveTopLeft(
                {box.left() + (box.width() - pictureSize.width()) / 2, box.bottom() + 1 - pictureSize.height()});
            break;
    }
    if (!picture.isNull()) painter.drawPixmap(pictureBox, picture);
    if (!text.isEmpty())
        style->drawItemText(&painter, textBox.adjusted(-1, -1, 1, 1), kTextFlags, widget.palette(), enabled, text,
                            QPalette::ButtonText);
}

}  // namespace vyn::qt
