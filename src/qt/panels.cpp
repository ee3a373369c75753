#include "platform/controls/panels.h"

#include <QRubberBand>
#include <QStyle>
#include <QStyleOption>

#include "qt/factory.h"
#include "qt/looks.h"
#include "qt/painted.h"
#include "qt/text.h"

namespace vyn::qt {

namespace panel_detail {

class PanelPeer final : public PeerOf<TCustomPanel> {
  public:
    using PeerOf::PeerOf;

    void Paint(QPainter& painter) {
        const TCustomPanel& panel = Self();
        QRect rect = widget_->rect();
        if (panel.BorderStyle() == TBorderStyle::bsSingle)
            rect = DrawBevel(painter, rect, false, 1, widget_->palette());
        rect = DrawCut(painter, rect, panel.BevelOuter());
        rect = rect.adjusted(panel.BorderWidth(), panel.BorderWidth(), -panel.BorderWidth(), -panel.BorderWidth());
        rect = DrawCut(painter, rect, panel.BevelInner());
        if (panel.Caption().empty()) return;
        widget_->style()->drawItemText(
            &painter, rect, AlignmentFlags(panel.Alignment()) | Qt::AlignVCenter | Qt::TextShowMnemonic,
            widget_->palette(), widget_->isEnabled(), ToQt(panel.Caption()), QPalette::WindowText);
    }

    QString AccessibleName() const override { return WithoutMnemonic(Self().Caption()); }

  protected:
    QWidget* MakeWidget(QWidget* parent) override { return new Painted<PanelPeer>(this, parent); }
    void ApplyText() override { widget_->update(); }

  private:
    QRect DrawCut(QPainter& painter, const QRect& rect, TBevelCut cut) {
        const int width = Self().BevelWidth();
        switch (cut) {
            case bvNone:
                return rect;
            case bvLowered:
                return DrawBevel(painter, rect, false, width, widget_->palette());
            case bvRaised:
                return DrawBevel(painter, rect, true, width, widget_->palette());
            case bvSpace:
                return rect.adjusted(width, width, -width, -width);
        }
        return rect;
    }
};

class SplitterPeer final : public PeerOf<TSplitter> {
  public:
    using PeerOf::PeerOf;
    ~SplitterPeer() override { delete band_.data(); }

    void Changed(PeerChange what) override {
        PeerOf::Changed(what);
        if (widget_ && what == PeerChange::Invalidate) ShowNewPlace();
    }

    void Paint(QPainter& painter) {
        if (Self().Beveled()) {
            DrawBevel(painter, widget_->rect(), true, 1, widget_->palette());
            return;
        }
        QStyleOption option;
        option.initFrom(widget_);
        if (Self().Align() == alLeft || Self().Align() == alRight) option.state |= QStyle::State_Horizontal;
        widget_->style()->drawControl(QStyle::CE_Splitter, &option, &painter, widget_);
        Guard(&Self(), [this] { Self().OnPaint(&Self()); });
    }

  protected:
    QWidget* MakeWidget(QWidget* parent) override {
        auto* widget = new Painted<SplitterPeer>(this, parent);
        widget->setAttribute(Qt::WA_Hover);
        return widget;
    }
    void ApplyCursor() override {
        // A form stored with the usual cursor leaves the direction to us.
        const bool vertical = Self().Align() == alTop || Self().Align() == alBottom;
        if (Self().Cursor() == crHSplit && vertical)
            widget_->setCursor(Qt::SplitVCursor);
        else
            PeerOf::ApplyCursor();
    }
    void ApplyStyle() override { ApplyCursor(); }

  private:
    // A line where the splitter will be.
    void ShowNewPlace() {
        const int offset = Self().DragOffset();
        if (offset == 0) {
            if (band_) band_->hide();
            return;
        }
        if (!band_) band_ = new QRubberBand(QRubberBand::Line, widget_->parentWidget());
        const bool vertical = Self().Align() == alTop || Self().Align() == alBottom;
        band_->setGeometry(widget_->geometry().translated(vertical ? 0 : offset, vertical ? offset : 0));
        band_->show();
    }

    QPointer<QRubberBand> band_;
};

}  // namespace panel_detail

void RegisterPanelPeers() {
    RegisterPeer(&TCustomPanel::StaticClass(), &NewPeer<panel_detail::PanelPeer>);
    RegisterPeer(&TSplitter::StaticClass(), &NewPeer<panel_detail::SplitterPeer>);
}

}  // namespace vyn::qt
