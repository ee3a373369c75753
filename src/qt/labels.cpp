#include <QPainter>
#include <QStyle>
#include <QStyleOption>

#include "platform/controls/labels.h"
#include "qt/factory.h"
#include "qt/light_peer.h"
#include "qt/looks.h"
#include "qt/text.h"

// Texts that stand still, lines and frames, drawn from their control's state.
namespace vyn::qt {

namespace label_detail {

class LabelPeer final : public LightPeerOf<TCustomLabel> {
  public:
    using LightPeerOf::LightPeerOf;

    QString AccessibleName() const override {
        return Self().ShowAccelChar() ? WithoutMnemonic(Self().GetLabelText()) : ToQt(Self().GetLabelText());
    }

  protected:
    void PaintOn(const Surface& surface) override {
        const TCustomLabel& label = Self();
        int flags = AlignmentFlags(label.Alignment());
        switch (label.Layout()) {
            case tlTop:
                flags |= Qt::AlignTop;
                break;
            case tlCenter:
                flags |= Qt::AlignVCenter;
                break;
            case tlBottom:
                flags |= Qt::AlignBottom;
                break;
        }
        if (plain_ && !label.WordWrap() && surface.enabled) {
            DrawLine(surface, flags);
            return;
        }
        if (label.WordWrap()) flags |= Qt::TextWordWrap;
        flags |= label.ShowAccelChar() ? Qt::TextShowMnemonic : 0;
        surface.style.drawItemText(&surface.painter, surface.rect, flags, surface.palette, surface.enabled, text_,
                                   QPalette::WindowText);
    }
    bool StaysInside(const QFontMetrics& metrics) const override {
        if (!plain_ || Self().WordWrap() || metrics.height() > Self().Height()) return false;
        // Letters may reach a little over their places, which shows at the edge that the text stands at.
        if (Self().Alignment() != taLeftJustify || text_.isEmpty() || metrics.leftBearing(text_.front()) < 0)
            return text_.isEmpty();
        return WidthOf(metrics, text_) <= Self().Width();
    }
    void TakeState() override {
        text_ = ToQt(Self().GetLabelText());
        plain_ = !text_.contains(QLatin1Char('&')) && !text_.contains(QLatin1Char('\n')) &&
                 !text_.contains(QLatin1Char('\t')) && !text_.contains(QLatin1Char('\r'));
    }
    void ApplyStyle() override {
        // A see-through label shows what is behind it, whatever its colour.
        widget_->setAutoFillBackground(!Self().Transparent() && widget_->testAttribute(Qt::WA_SetPalette) &&
                                       Self().Parent() && Self().Color() != Self().Parent()->Color());
    }
    void ApplyColor() override {
        LightPeerOf::ApplyColor();
        ApplyStyle();
    }

  private:
    // One line without mnemonic, as most labels are, needs no layout: half the time of the general way.
    void DrawLine(const Surface& surface, int flags) {
        const QFontMetrics metrics = surface.painter.fontMetrics();
        const QRect& rect = surface.rect;
        int x = 0;
        if (flags & Qt::AlignRight) x = rect.width() - metrics.horizontalAdvance(text_);
        if (flags & Qt::AlignHCenter) x = (rect.width() - metrics.horizontalAdvance(text_)) / 2;
        int y = metrics.ascent();
        if (flags & Qt::AlignVCenter) y += (rect.height() - metrics.height()) / 2;
        if (flags & Qt::AlignBottom) y += rect.height() - metrics.height();
        surface.painter.setPen(surface.palette.color(QPalette::WindowText));
        surface.painter.drawText(x, y, text_);
    }

    QString text_;
    bool plain_ = true;
};

class StaticTextPeer final : public PeerOf<TCustomStaticText> {
  public:
    using PeerOf::PeerOf;

    void Paint(QPainter& painter) {
        const TCustomStaticText& label = Self();
        QRect rect = widget_->rect();
        if (label.BorderStyle() == sbsSingle) {
            painter.setPen(widget_->palette().color(QPalette::Dark));
            painter.drawRect(rect.adjusted(0, 0, -1, -1));
        }
        if (label.BorderStyle() == sbsSunken) DrawBevel(painter, rect, false, 1, widget_->palette());
        if (label.BorderStyle() != sbsNone) rect.adjust(2, 2, -2, -2);
        const int flags = AlignmentFlags(label.Alignment()) | Qt::AlignTop | Qt::TextWordWrap |
                          (label.ShowAccelChar() ? Qt::TextShowMnemonic : 0);
        widget_->style()->drawItemText(&painter, rect, flags, widget_->palette(), widget_->isEnabled(),
                                       ToQt(label.Caption()), QPalette::WindowText);
    }

    QString AccessibleName() const override { return WithoutMnemonic(Self().Caption()); }

  protected:
    QWidget* MakeWidget(QWidget* parent) override { return new Painted<StaticTextPeer>(this, parent); }
    void ApplyText() override { widget_->update(); }
};

class BevelPeer final : public LightPeerOf<TBevel> {
  public:
    using LightPeerOf::LightPeerOf;
    // A frame around controls lets the mouse through to what it frames.
    bool TakesMouse() const override { return false; }

  protected:
    bool StaysInside(const QFontMetrics&) const override { return true; }
    void PaintOn(const Surface& surface) override {
        QPainter& painter = surface.painter;
        const QRect& rect = surface.rect;
        const QPalette& palette = surface.palette;
        const bool raised = Self().Style() == TBevelStyle::bsRaised;
        const QColor first = palette.color(raised ? QPalette::Light : QPalette::Mid);
        const QColor second = palette.color(raised ? QPalette::Mid : QPalette::Light);
        const auto line = [&](const QPoint& from, const QPoint& to, const QPoint& step) {
            painter.setPen(first);
            painter.drawLine(from, to);
            painter.setPen(second);
            painter.drawLine(from + step, to + step);
        };
        switch (Self().Shape()) {
            case bsBox:
                DrawBevel(painter, rect, raised, 1, palette);
                break;
            case bsFrame:
                DrawBevel(painter, DrawBevel(painter, rect, raised, 1, palette), !raised, 1, palette);
                break;
            case bsTopLine:
                line(rect.topLeft(), rect.topRight(), {0, 1});
                break;
            case bsBottomLine:
                line(rect.bottomLeft() - QPoint(0, 1), rect.bottomRight() - QPoint(0, 1), {0, 1});
                break;
            case bsLeftLine:
                line(rect.topLeft(), rect.bottomLeft(), {1, 0});
                break;
            case bsRightLine:
                line(rect.topRight() - QPoint(1, 0), rect.bottomRight() - QPoint(1, 0), {1, 0});
                break;
            case bsSpacer:
                break;
        }
    }
    QWidget* MakeWidget(QWidget* parent) override {
        QWidget* widget = LightPeerOf::MakeWidget(parent);
        widget->setAttribute(Qt::WA_TransparentForMouseEvents);
        return widget;
    }
};

}  // namespace label_detail

void RegisterLabelPeers() {
    RegisterPeer(&TCustomLabel::StaticClass(), &NewPeer<label_detail::LabelPeer>);
    RegisterPeer(&TCustomStaticText::StaticClass(), &NewPeer<label_detail::StaticTextPeer>);
    RegisterPeer(&TBevel::StaticClass(), &NewPeer<label_detail::BevelPeer>);
}

}  // namespace vyn::qt
