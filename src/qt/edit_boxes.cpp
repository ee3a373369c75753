#include <QApplication>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionToolButton>

#include "controls/base_edit_box.h"
#include "qt/edit_peer.h"
#include "qt/factory.h"
#include "qt/light_peer.h"
#include "qt/pictures.h"
#include "qt/press.h"

// Edits with a button inside: the desktop's line of text, our border and button on it.
namespace vyn::qt {

namespace edit_box_detail {

constexpr qreal kBorderWidth = 1.5;
constexpr qreal kBorderRadius = 2.5;
constexpr qreal kOverShare = 0.45;  // of the text's colour in the line while the mouse is over it

constexpr int kDots = 3;
constexpr int kDotSize = 2;
constexpr int kDotGap = 2;

QColor Between(const QColor& a, const QColor& b, qreal share) {
    return QColor::fromRgbF(static_cast<float>(a.redF() + (b.redF() - a.redF()) * share),
                            static_cast<float>(a.greenF() + (b.greenF() - a.greenF()) * share),
                            static_cast<float>(a.blueF() + (b.blueF() - a.blueF()) * share));
}

class EditBoxPeer;

class EditBoxWidget final : public Native<QLineEdit> {
  public:
    EditBoxWidget(EditBoxPeer* peer, const QString& text, QWidget* parent);

  protected:
    void paintEvent(QPaintEvent* event) override;
};

class EditBoxPeer final : public EditPeer {
  public:
    using EditPeer::EditPeer;

    void PaintBorder(QPainter& painter) {
        const auto& box = static_cast<TBaseVynEditBox&>(Control());
        if (!box.DrawsSolidBorder()) return;
        const QPalette& palette = widget_->palette();
        const QColor line = box.Focused() ? palette.color(QPalette::Highlight)
                                          : Between(palette.color(QPalette::Base), palette.color(QPalette::Text),
                                                    edit_box_detail::kOverShare);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(line, kBorderWidth));
        constexpr qreal kInside = kBorderWidth / 2;
        painter.drawRoundedRect(QRectF(widget_->rect()).adjusted(kInside, kInside, -kInside, -kInside), kBorderRadius,
                                kBorderRadius);
    }

  protected:
    QLineEdit* NewLineEdit(QWidget* parent) override { return new EditBoxWidget(this, ToQt(Self().Text()), parent); }
};

EditBoxWidget::EditBoxWidget(EditBoxPeer* peer, const QString& text, QWidget* parent)
    : Native<QLineEdit>(peer, text, parent) {}

void EditBoxWidget::paintEvent(QPaintEvent* event) {
    QLineEdit::paintEvent(event);
    if (!Peer()) return;
    QPainter painter(this);
    static_cast<EditBoxPeer*>(Peer())->PaintBorder(painter);
}

// A picture without colours.
bool IsGrey(const QImage& picture) {
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb pixel = picture.pixel(x, y);
            if (qAlpha(pixel) > 0 && (qRed(pixel) != qGreen(pixel) || qGreen(pixel) != qBlue(pixel))) return false;
        }
    return true;
}

// A grey picture in another ink: the darker it is, the more of that.
QImage Inked(const QImage& picture, const QColor& ink) {
    constexpr int kFull = 255;
    QImage drawn(picture.size(), QImage::Format_ARGB32);
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb pixel = picture.pixel(x, y);
            const int share = qAlpha(pixel) * (kFull - qRed(pixel)) / kFull;
            drawn.setPixel(x, y, qRgba(ink.red(), ink.green(), ink.blue(), share));
        }
    return drawn;
}

// Flat until the mouse comes; no widget of its own until then either.
class EditBoxButtonPeer final : public LightPeerOf<TVynEditBoxSpeedButton> {
  public:
    using LightPeerOf::LightPeerOf;

    bool TakesDoubleClicks() const override { return false; }
    QString AccessibleName() const override {
        if (const QString name = ButtonName(Self()); !name.isEmpty()) return name;
        const WidgetPeer* box = PeerOfControl(&Self().Box());
        return box ? box->AccessibleName() : QString();
    }

  protected:
    QWidget* MakeWidget(QWidget* parent) override {
        QWidget* widget = LightPeerOf::MakeWidget(parent);
        widget->setCursor(Qt::ArrowCursor);  // not the text's
        return widget;
    }
    bool StaysInside(const QFontMetrics&) const override { return true; }

    void PaintOn(const Surface& surface) override {
        const State state = surface.enabled ? Self().CurrentState() : State::Disabled;
        if (state == State::Hot || state == State::Pressed) {
            QStyleOptionToolButton panel;
            panel.initFrom(&surface.widget);
            panel.rect = surface.rect;
            panel.palette = surface.palette;
            panel.subControls = QStyle::SC_ToolButton;
            panel.state = QStyle::State_Enabled | QStyle::State_AutoRaise | QStyle::State_MouseOver |
                          (state == State::Pressed ? QStyle::State_Sunken : QStyle::State_Raised);
            surface.style.drawPrimitive(QStyle::PE_PanelButtonTool, &panel, &surface.painter, &surface.widget);
        }
        const int shift = state == State::Pressed ? 1 : 0;
        const QRect area = surface.rect.translated(shift, shift);
        const QPixmap picture = Picture(state, surface);
        if (picture.isNull())
            PaintDots(surface, area, state);
        else
            surface.style.drawItemPixmap(&surface.painter, area, Qt::AlignCenter, picture);
    }

  private:
    using State = TVynEditBoxSpeedButton::State;
    QPixmap Picture(State state, const Surface& surface) const {
        const TCustomImageList* images = Self().Images();
        const int index = Self().ImageIndex();
        if (!images || index < 0) return {};
        const QImage picture = ToQImage(images->Image(index));
        if (IsGrey(picture)) return QPixmap::fromImage(Inked(picture, InkOf(state, surface)));
        const QPixmap pixmap = QPixmap::fromImage(picture);
        if (state != State::Disabled || index > 0) return pixmap;
        QStyleOption option;
        option.palette = surface.palette;
        return surface.style.generatedIconPixmap(QIcon::Disabled, pixmap, &option);
    }
    // What is drawn in the text's colour: at rest on the line's ground, else on a raised or pressed panel.
    static QColor InkOf(State state, const Surface& surface) {
        const bool panel = state == State::Hot || state == State::Pressed;
        return surface.palette.color(state == State::Disabled ? QPalette::Disabled : QPalette::Active,
                                     panel ? QPalette::ButtonText : QPalette::Text);
    }
    static void PaintDots(const Surface& surface, const QRect& area, State state) {
        constexpr int kWidth = kDots * kDotSize + (kDots - 1) * kDotGap;
        const QColor color = InkOf(state, surface);
        const QPoint at = area.center() - QPoint(kWidth / 2 - 1, kDotSize / 2);
        for (int dot = 0; dot < kDots; ++dot)
            surface.painter.fillRect(at.x() + dot * (kDotSize + kDotGap), at.y(), kDotSize, kDotSize, color);
    }
};

}  // namespace edit_box_detail

void RegisterEditBoxPeers() {
    RegisterPeer(&TBaseVynEditBox::StaticClass(), &NewPeer<edit_box_detail::EditBoxPeer>);
    RegisterPeer(&TVynEditBoxSpeedButton::StaticClass(), &NewPeer<edit_box_detail::EditBoxButtonPeer>);
}

}  // namespace vyn::qt
