#include <QAbstractScrollArea>
#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QPointer>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <algorithm>
#include <climits>

#include "platform/controls/db_ctrl_grid.h"
#include "qt/factory.h"
#include "qt/looks.h"
#include "qt/painted.h"
#include "qt/text.h"

// Control grids: the selected record's panel is a widget; the others are pictures of the copies' panel, a widget that
// is never shown, which is taken for each record in turn.
namespace vyn::qt {

namespace ctrl_grid_detail {

class CtrlGridPeer;

class CtrlGridWidget final : public NativeScrolling<QAbstractScrollArea> {
  public:
    CtrlGridWidget(CtrlGridPeer* peer, QWidget* parent);

  protected:
    void paintEvent(QPaintEvent*) override;
    void resizeEvent(QResizeEvent*) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override { PassOn(event); }
    void mouseReleaseEvent(QMouseEvent* event) override { PassOn(event); }
    void scrollContentsBy(int, int) override;

  private:
    CtrlGridPeer* Grid() const;
    void PassOn(QMouseEvent* event);
    QPointer<QWidget> pressed_;  // the control that a click on another panel went on to
};

class CtrlGridPeer final : public PeerOf<TDBCtrlGrid> {
  public:
    using PeerOf::PeerOf;

    QWidget* ClientWidget() const override { return widget_ ? Area()->viewport() : nullptr; }

    void Paint(QPainter& painter) {
        TDBCtrlGrid& grid = Self();
        const QRect viewport = Area()->viewport()->rect();
        painter.fillRect(viewport, ToQColor(grid.Color(), widget_->palette()));
        TDataSet* data = grid.DataSet();
        const WidgetPeer* copy = PeerOfControl(grid.CopyPanel());
        if (!data || !copy || !copy->Widget()) return;
        grid.PrepareCopies();
        const qreal ratio = widget_->devicePixelRatioF();
        QPixmap picture(copy->Widget()->size() * ratio);
        picture.setDevicePixelRatio(ratio);
        const int64_t top = grid.TopRecord();
        const int64_t end = grid.EndRecord();
        for (int64_t record = top; record < end; ++record) {
            const QRect place = ToQRect(grid.PanelRect(static_cast<int>(record - top)));
            if (record == data->CurrentRecord() || !place.intersects(viewport)) continue;
            grid.ShowCopy(record, [&] { copy->Widget()->render(&picture); });
            painter.drawPixmap(place.topLeft(), picture);
        }
    }

    void Press(const QPoint& at) {
        Guard(&Self(), [&] {
            if (Self().CanFocus() && !Self().Focused()) Self().SetFocus();
            for (int index = 0; index < Self().PanelCount(); ++index)
                if (ToQRect(Self().PanelRect(index)).contains(at)) {
                    Self().ProcessPanelClick(index);
                    break;
                }
        });
    }

    // What stands at a place of the viewport on the selected panel, which has come there.
    QWidget* WidgetAt(const QPoint& at) {
        WidgetPeer* panel = PeerOfControl(Self().Panel());
        if (!panel || !panel->Widget() || !panel->Widget()->geometry().contains(at)) return nullptr;
        const QPoint inside = panel->Widget()->mapFrom(Area()->viewport(), at);
        if (QWidget* light = panel->WakeLightAt(inside)) return light;
        return panel->Widget()->childAt(inside);
    }

    void Scrolled() {
        if (updating_ > 0) return;
        Guard(&Self(), [&] {
            TDBCtrlGrid& grid = Self();
            const TDataSet* data = grid.DataSet();
            const int64_t first = data ? data->FirstRecord() : 0;
            grid.SetTopRecord(first + static_cast<int64_t>(Bar().value()) * grid.LineLength());
        });
        UpdateBars();
        Area()->viewport()->update();
    }

    void Changed(PeerChange what) override {
        if (widget_ && what == PeerChange::Scroll) {
            ApplyItems();
            return;
        }
        PeerOf::Changed(what);
        if (widget_ && what == PeerChange::Invalidate) Area()->viewport()->update();
    }
    void Resized() { UpdateBars(); }

  protected:
    QWidget* MakeWidget(QWidget* parent) override {
        auto* area = new CtrlGridWidget(this, parent);
        area->setFrameShape(QFrame::NoFrame);
        return area;
    }
    void ApplyStyle() override {
        const bool vertical = Self().Orientation() == goVertical;
        Area()->setVerticalScrollBarPolicy(vertical ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
        Area()->setHorizontalScrollBarPolicy(vertical ? Qt::ScrollBarAlwaysOff : Qt::ScrollBarAlwaysOn);
        widget_->setFocusPolicy(FocusPolicyOf(Self()));
        if (Self().Panel()) Self().Panel()->Invalidate();
        ApplyItems();
    }
    void ApplyItems() override {
        UpdateBars();
        Area()->viewport()->update();
    }
    void ApplySelection() override { ApplyItems(); }
    void ApplyColor() override {
        PeerOf::ApplyColor();
        Area()->viewport()->update();
    }
    void FocusChanged(QWidget& widget, bool in) override {
        const Watch alive(*this);
        PeerOf::FocusChanged(widget, in);
        if (alive && Self().Panel()) Self().Panel()->Invalidate();
    }

  private:
    QAbstractScrollArea* Area() const { return static_cast<QAbstractScrollArea*>(widget_); }
    QScrollBar& Bar() const {
        return Self().Orientation() == goVertical ? *Area()->verticalScrollBar() : *Area()->horizontalScrollBar();
    }
    void UpdateBars() {
        const Updating updating(*this);
        const TDBCtrlGrid& grid = Self();
        const TDataSet* data = grid.DataSet();
        const int64_t length = grid.LineLength();
        const int64_t shown = grid.PanelCount() / length;
        const int64_t records = data ? data->RecordsExpected() : 0;
        const int64_t first = data ? data->FirstRecord() : 0;
        // While there may be more, a line more can be scrolled to, which fetches it.
        const int64_t beyond = data && !data->IsPaged() && !data->AllFetched() ? shown : 0;
        const int64_t last = std::clamp<int64_t>((records + length - 1) / length - shown + beyond, 0, INT_MAX);
        Bar().setRange(0, static_cast<int>(last));
        Bar().setPageStep(static_cast<int>(shown));
        Bar().setValue(static_cast<int>(std::clamp<int64_t>((grid.TopRecord() - first) / length, 0, INT_MAX)));
    }
};

CtrlGridWidget::CtrlGridWidget(CtrlGridPeer* peer, QWidget* parent)
    : NativeScrolling<QAbstractScrollArea>(peer, parent) {}

CtrlGridPeer* CtrlGridWidget::Grid() const { return static_cast<CtrlGridPeer*>(Peer()); }

void CtrlGridWidget::paintEvent(QPaintEvent*) {
    if (!Grid()) return;
    QPainter painter(viewport());
    Guard(&Grid()->Control(), [&] { Grid()->Paint(painter); });
}

void CtrlGridWidget::resizeEvent(QResizeEvent*) {
    if (Grid()) Grid()->Resized();
}

void CtrlGridWidget::mousePressEvent(QMouseEvent* event) {
    if (!Grid() || event->button() != Qt::LeftButton) return;
    const QPoint at = event->position().toPoint();
    const QPointer<QWidget> alive(this);
    Grid()->Press(at);
    if (!alive || !Grid()) return;
    pressed_ = Grid()->WidgetAt(at);
    if (!pressed_) return;
    if (pressed_->focusPolicy() & Qt::ClickFocus) pressed_->setFocus(Qt::MouseFocusReason);
    PassOn(event);
}

// A click on a control of another panel selects the panel and is the control's own then.
void CtrlGridWidget::PassOn(QMouseEvent* event) {
    if (!pressed_) return;
    QMouseEvent passed(event->type(), pressed_->mapFromGlobal(event->globalPosition()), event->globalPosition(),
                       event->button(), event->buttons(), event->modifiers());
    const QPointer<QWidget> target = pressed_;
    if (event->type() == QEvent::MouseButtonRelease) pressed_ = nullptr;
    QCoreApplication::sendEvent(target, &passed);
}

void CtrlGridWidget::scrollContentsBy(int, int) {
    if (Grid()) Grid()->Scrolled();
}

class CtrlPanelPeer final : public PeerOf<TDBCtrlPanel> {
  public:
    using PeerOf::PeerOf;

    void Paint(QPainter& painter) {
        const TDBCtrlGrid& grid = Self().Grid();
        const QPalette& palette = widget_->palette();
        QRect inside = widget_->rect();
        painter.fillRect(inside, ToQColor(Self().Color(), palette));
        if (grid.PanelBorder() == gbRaised) {
            // Neighbours share a line.
            painter.setPen(palette.color(QPalette::Mid));
            painter.drawLine(inside.bottomLeft(), inside.bottomRight());
            painter.drawLine(inside.topRight(), inside.bottomRight());
            inside.adjust(0, 0, -1, -1);
        }
        if (!Self().IsSelected()) return;
        constexpr int kMark = 3;
        painter.fillRect(QRect(inside.left(), inside.top(), kMark, inside.height()),
                         palette.color(HasKeyboard() ? QPalette::Active : QPalette::Inactive, QPalette::Highlight));
        if (!grid.ShowFocus() || !grid.Focused()) return;
        QStyleOptionFocusRect focus;
        focus.initFrom(widget_);
        focus.state |= QStyle::State_KeyboardFocusChange;
        focus.backgroundColor = ToQColor(Self().Color(), palette);
        focus.rect = inside.adjusted(kMark + 1, 1, -1, -1);
        widget_->style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, widget_);
    }

  protected:
    QWidget* MakeWidget(QWidget* parent) override { return new Painted<CtrlPanelPeer>(this, parent); }
    void ApplyVisible() override {
        // Pictures are taken of the copies' panel, which itself is not seen.
        if (Self().IsSelected())
            PeerOf::ApplyVisible();
        else
            widget_->hide();
    }

  private:
    bool HasKeyboard() const {
        const QWidget* focused = QApplication::focusWidget();
        return focused && (focused == widget_->parentWidget()->parentWidget() || widget_->isAncestorOf(focused));
    }
};

}  // namespace ctrl_grid_detail

void RegisterCtrlGridPeers() {
    RegisterPeer(&TDBCtrlGrid::StaticClass(), &NewPeer<ctrl_grid_detail::CtrlGridPeer>);
    RegisterPeer(&TDBCtrlPanel::StaticClass(), &NewPeer<ctrl_grid_detail::CtrlPanelPeer>);
}

}  // namespace vyn::qt
