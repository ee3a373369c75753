#include "platform/controls/tool_bars.h"

#include <QMouseEvent>
#include <QStyle>
#include <QStyleOptionToolButton>

#include "platform/controls/menus.h"
#include "qt/factory.h"
#include "qt/looks.h"
#include "qt/painted.h"
#include "qt/pictures.h"
#include "qt/press.h"
#include "qt/text.h"

namespace vyn::qt {

namespace tool_bar_detail {

constexpr int kArrowWidth = 13;

class ToolBarPeer final : public PeerOf<TToolBar> {
  public:
    using PeerOf::PeerOf;

    void Changed(PeerChange what) override {
        PeerOf::Changed(what);
        // Pictures, captions and flatness are the bar's, shown by its buttons.
        if (widget_ && (what == PeerChange::Style || what == PeerChange::Items || what == PeerChange::Picture))
            for (TControl* control : Self().GraphicControls()) control->PeerChanged(PeerChange::Invalidate);
    }

    void Paint(QPainter& painter) {
        const TEdgeBorders edges = Self().EdgeBorders();
        const QRect rect = widget_->rect();
        painter.setPen(widget_->palette().color(QPalette::Mid));
        if (edges.Contains(ebTop)) painter.drawLine(rect.topLeft(), rect.topRight());
        if (edges.Contains(ebBottom)) painter.drawLine(rect.bottomLeft(), rect.bottomRight());
        if (edges.Contains(ebLeft)) painter.drawLine(rect.topLeft(), rect.bottomLeft());
        if (edges.Contains(ebRight)) painter.drawLine(rect.topRight(), rect.bottomRight());
    }

  protected:
    QWidget* MakeWidget(QWidget* parent) override { return new Painted<ToolBarPeer>(this, parent); }
};

class ToolButtonPeer final : public PeerOf<TToolButton> {
  public:
    using PeerOf::PeerOf;

    bool TakesDoubleClicks() const override { return false; }

    bool MouseHappened(QWidget& widget, QEvent& event, const NativeCall& native) override {
        const Watch alive(*this);
        TToolButton& button = Self();
        if (event.type() == QEvent::MouseButtonPress || event.type() == QEvent::MouseButtonDblClick) {
            const auto& mouse = static_cast<QMouseEvent&>(event);
            if (mouse.button() != Qt::LeftButton || button.IsSeparator() || !widget_->isEnabled())
                return PeerOf::MouseHappened(widget, event, native);
            const bool arrow = HasArrow() && mouse.position().x() >= widget_->width() - kArrowWidth;
            if (arrow || (button.DropdownMenu() && button.Style() == tbsButton)) {
                Guard(&button, [&] { button.CheckMenuDropdown(); });
                if (alive) widget.update();
                return true;
            }
        }
        if (press_.Follow(*widget_, event)) Guard(&button, [&] { button.ProcessPress(); });
        if (!alive) return true;
        return PeerOf::MouseHappened(widget, event, native);
    }

    void Paint(QPainter& painter) {
        TToolButton& button = Self();
        const TToolBar* bar = button.ToolBar();
        if (button.IsSeparator()) {
            PaintSeparator(painter);
            return;
        }
        const bool sunken = press_.Sunken();
        QStyleOptionToolButton option;
        option.initFrom(widget_);
        option.state |= QStyle::State_AutoRaise;
        option.subControls = QStyle::SC_ToolButton;
        const bool hot = widget_->underMouse() && widget_->isEnabled();
        if (!hot) option.state &= ~QStyle::State_MouseOver;
        if (sunken) option.state |= QStyle::State_Sunken;
        if (button.Down()) option.state |= QStyle::State_On;
        if (bar && !bar->Flat()) option.state |= QStyle::State_Raised;
        if (sunken || hot || button.Down() || button.Marked() || (bar && !bar->Flat()))
            widget_->style()->drawPrimitive(QStyle::PE_PanelButtonTool, &option, &painter, widget_);
        QRect area = widget_->rect();
        if (HasArrow()) {
            QStyleOption arrow = option;
            arrow.rect =
                QRect(area.right() + 1 - kArrowWidth, area.top(), kArrowWidth, area.height()).adjusted(3, 0, -3, 0);
            widget_->style()->drawPrimitive(QStyle::PE_IndicatorArrowDown, &arrow, &painter, widget_);
            area.setRight(area.right() - kArrowWidth);
        }
        const bool captions = !bar || bar->ShowCaptions();
        DrawGlyphAndText(painter, area, Picture(hot), captions ? button.Caption() : AnsiString(),
                         bar && bar->List() ? blGlyphLeft : blGlyphTop, -1, bar && bar->List() ? -1 : 1, *widget_,
                         sunken);
    }

    QString AccessibleName() const override { return ButtonName(Self()); }

  protected:
    QWidget* MakeWidget(QWidget* parent) override {
        auto* widget = new Painted<ToolButtonPeer>(this, parent);
        widget->setAttribute(Qt::WA_Hover);
        return widget;
    }
    void ApplyText() override { widget_->update(); }
    void ApplySelection() override { widget_->update(); }

  private:
    bool HasArrow() const { return Self().Style() == tbsDropDown; }

    void PaintSeparator(QPainter& painter) {
        const TToolBar* bar = Self().ToolBar();
        if (Self().Style() == tbsSeparator && bar && !bar->Flat()) return;  // a gap
        QStyleOption option;
        option.initFrom(widget_);
        option.state |= QStyle::State_Horizontal;
        widget_->style()->drawPrimitive(QStyle::PE_IndicatorToolBarSeparator, &option, &painter, widget_);
    }

    QPixmap Picture(bool hot) const {
        const TToolBar* bar = Self().ToolBar();
        if (!bar || Self().ImageIndex() < 0) return {};
        const auto at = [&](const TCustomImageList* list) {
            return list && Self().ImageIndex() < list->Count()
                       ? QPixmap::fromImage(ToQImage(list->Image(Self().ImageIndex())))
                       : QPixmap();
        };
        if (!widget_->isEnabled()) {
            if (const QPixmap own = at(bar->DisabledImages()); !own.isNull()) return own;
            const QPixmap usual = at(bar->Images());
            if (usual.isNull()) return usual;
            QStyleOption option;
            option.palette = widget_->palette();
            return widget_->style()->generatedIconPixmap(QIcon::Disabled, usual, &option);
        }
        if (hot)
            if (const QPixmap own = at(bar->HotImages()); !own.isNull()) return own;
        return at(bar->Images());
    }

    Press press_;
};

}  // namespace tool_bar_detail

void RegisterToolBarPeers() {
    RegisterPeer(&TToolBar::StaticClass(), &NewPeer<tool_bar_detail::ToolBarPeer>);
    RegisterPeer(&TToolButton::StaticClass(), &NewPeer<tool_bar_detail::ToolButtonPeer>);
}

}  // namespace vyn::qt
