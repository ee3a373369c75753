#include <QPainter>
#include <QPainterPath>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QStyleOptionFrame>
#include <QStyleOptionToolButton>
#include <algorithm>

#include "platform/controls/db_controls.h"
#include "platform/controls/db_navigators.h"
#include "qt/factory.h"
#include "qt/looks.h"
#include "qt/painted.h"
#include "qt/pictures.h"
#include "qt/press.h"
#include "qt/text.h"

// The navigator's buttons and the picture of a field; the other data-aware controls have the peers of their plain kind.
namespace vyn::qt {

namespace data_control_detail {

// Shapes are drawn in a square of this side, which is scaled to the button.
constexpr qreal kSide = 16;
constexpr qreal kLargestSide = 16;
constexpr qreal kMargin = 4;
constexpr qreal kStroke = 1.8;

QPainterPath Triangle(qreal tip, qreal base) {
    QPainterPath path(QPointF(tip, 8));
    path.lineTo(base, 3);
    path.lineTo(base, 13);
    path.closeSubpath();
    return path;
}

// What a button means, filled; lines come apart.
struct Shape {
    QPainterPath Filled;
    QPainterPath Lines;
};

Shape ShapeOf(TNavigateBtn button) {
    Shape shape;
    switch (button) {
        case nbFirst:
            shape.Filled = Triangle(5.5, 12);
            shape.Filled.addRect(3, 3, 2, 10);
            break;
        case nbPrior:
            shape.Filled = Triangle(4.5, 11);
            break;
        case nbNext:
            shape.Filled = Triangle(11.5, 5);
            break;
        case nbLast:
            shape.Filled = Triangle(10.5, 4);
            shape.Filled.addRect(11, 3, 2, 10);
            break;
        case nbInsert:
            shape.Lines.moveTo(8, 3.5);
            shape.Lines.lineTo(8, 12.5);
            shape.Lines.moveTo(3.5, 8);
            shape.Lines.lineTo(12.5, 8);
            break;
        case nbDelete:
            shape.Lines.moveTo(3.5, 8);
            shape.Lines.lineTo(12.5, 8);
            break;
        case nbEdit:
            shape.Filled = QPainterPath(QPointF(8, 4));
            shape.Filled.lineTo(13, 11.5);
            shape.Filled.lineTo(3, 11.5);
            shape.Filled.closeSubpath();
            break;
        case nbPost:
            shape.Lines.moveTo(3.5, 8.5);
            shape.Lines.lineTo(6.5, 11.5);
            shape.Lines.lineTo(12.5, 4.5);
            break;
        case nbCancel:
            shape.Lines.moveTo(4, 4);
            shape.Lines.lineTo(12, 12);
            shape.Lines.moveTo(12, 4);
            shape.Lines.lineTo(4, 12);
            break;
        case nbRefresh:
            shape.Lines.arcMoveTo(3.5, 3.5, 9, 9, 60);
            shape.Lines.arcTo(3.5, 3.5, 9, 9, 60, 290);
            shape.Filled = QPainterPath(QPointF(14, 7.5));
            shape.Filled.lineTo(9, 6.5);
            shape.Filled.lineTo(12.8, 3);
            shape.Filled.closeSubpath();
            break;
    }
    return shape;
}

class NavButtonPeer final : public PressedPeer<NavButtonPeer, TNavButton> {
  public:
    using PressedPeer::PressedPeer;

    void Paint(QPainter& painter) {
        const TNavButton& button = Self();
        QStyleOptionToolButton option;
        option.initFrom(widget_);
        option.subControls = QStyle::SC_ToolButton;
        const bool sunken = Sunken() && widget_->isEnabled();
        const bool hot = widget_->underMouse() && widget_->isEnabled();
        if (button.Flat()) option.state |= QStyle::State_AutoRaise;
        option.state |= sunken ? QStyle::State_Sunken : QStyle::State_Raised;
        if (!hot) option.state &= ~QStyle::State_MouseOver;
        if (!button.Flat() || sunken || hot)
            widget_->style()->drawPrimitive(QStyle::PE_PanelButtonTool, &option, &painter, widget_);
        PaintShape(painter);
        if (!button.HasKeyboard()) return;
        QStyleOptionFocusRect focus;
        focus.initFrom(widget_);
        focus.rect = widget_->rect().adjusted(2, 2, -2, -2);
        widget_->style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, widget_);
    }

  private:
    void PaintShape(QPainter& painter) {
        const QRectF room = widget_->rect();
        const qreal side = std::min({room.width() - kMargin, room.height() - kMargin, kLargestSide});
        if (side <= 0) return;
        const Shape shape = ShapeOf(Self().Index());
        const QColor color = widget_->palette().color(QPalette::ButtonText);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(room.center() - QPointF(side / 2, side / 2));
        painter.scale(side / kSide, side / kSide);
        painter.fillPath(shape.Filled, color);
        painter.strokePath(shape.Lines, QPen(color, kStroke, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.resetTransform();
    }
};

class DBImagePeer final : public PeerOf<TDBImage> {
  public:
    using PeerOf::PeerOf;

    void Paint(QPainter& painter) {
        const TDBImage& image = Self();
        const QPalette& palette = widget_->palette();
        painter.fillRect(widget_->rect(), palette.brush(QPalette::Base));
        const QRect inside =
            image.BorderStyle() == TBorderStyle::bsSingle ? widget_->rect().adjusted(2, 2, -2, -2) : widget_->rect();
        painter.setClipRect(inside);
        if (const QString name = ToQt(image.Placeholder()); !name.isEmpty()) {
            painter.setPen(palette.color(QPalette::Text));
            painter.drawText(inside, Qt::AlignCenter, name);
        } else if (!pixmap_.isNull()) {
            const TRect place = image.DestRect(pixmap_.width(), pixmap_.height());
            const QRect target = ToQRect(place);
            painter.setRenderHint(QPainter::SmoothPixmapTransform, target.size() != pixmap_.size());
            painter.drawPixmap(target, pixmap_);
        }
        painter.setClipping(false);
        if (image.BorderStyle() == TBorderStyle::bsSingle) {
            QStyleOptionFrame frame;
            frame.initFrom(widget_);
            frame.state |= QStyle::State_Sunken;
            frame.lineWidth = 1;
            frame.frameShape = QFrame::StyledPanel;
            widget_->style()->drawControl(QStyle::CE_ShapedFrame, &frame, &painter, widget_);
        }
        if (!widget_->hasFocus()) return;
        QStyleOptionFocusRect focus;
        focus.initFrom(widget_);
        focus.rect = inside;
        widget_->style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, widget_);
    }

    void Changed(PeerChange what) override {
        if (what == PeerChange::Picture && widget_) TakePicture();
        PeerOf::Changed(what);
    }

  protected:
    QWidget* MakeWidget(QWidget* parent) override {
        auto* widget = new Painted<DBImagePeer>(this, parent);
        widget->setFocusPolicy(FocusPolicyOf(Self()));
        TakePicture();
        return widget;
    }
    void FocusChanged(QWidget& widget, bool in) override {
        PeerOf::FocusChanged(widget, in);
        widget.update();
    }
    QPalette::ColorRole BackgroundRole() const override { return QPalette::Base; }
    TColor NativeColor() const override { return clWindow; }

  private:
    void TakePicture() {
        const TGraphic* graphic = Self().PictureRef().Graphic();
        pixmap_ = graphic ? QPixmap::fromImage(ToQImage(*graphic, false)) : QPixmap();
    }

    QPixmap pixmap_;
};

}  // namespace data_control_detail

void RegisterDataControlPeers() {
    RegisterPeer(&TNavButton::StaticClass(), &NewPeer<data_control_detail::NavButtonPeer>);
    RegisterPeer(&TDBImage::StaticClass(), &NewPeer<data_control_detail::DBImagePeer>);
}

}  // namespace vyn::qt
