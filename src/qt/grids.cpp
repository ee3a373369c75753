#include <QAbstractScrollArea>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionHeader>
#include <algorithm>

#include "platform/controls/db_grids.h"
#include "qt/factory.h"
#include "qt/keys.h"
#include "qt/looks.h"
#include "qt/painted.h"
#include "qt/text.h"

// Grids over datasets: the peer paints the cells that are in sight, and asks the grid for those alone.
namespace vyn::qt {

namespace grid_detail {

constexpr int kTextMargin = 4;
constexpr int kGripWidth = 4;     // around a title's right edge: the mouse sizes the column there
constexpr int kDragDistance = 6;  // beyond this a pressed title is being moved

class GridPeer;

class GridWidget final : public NativeScrolling<QAbstractScrollArea> {
  public:
    GridWidget(GridPeer* peer, QWidget* parent);

  protected:
    void paintEvent(QPaintEvent*) override;
    void resizeEvent(QResizeEvent*) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void scrollContentsBy(int, int) override;

  private:
    GridPeer* Grid() const;
};

class GridPeer final : public PeerOf<TCustomDBGrid> {
  public:
    using PeerOf::PeerOf;

    void Paint(QPainter& painter, const QRect& viewport) {
        const TCustomDBGrid& grid = Self();
        PaintTitles(painter, viewport);
        const QPalette& palette = widget_->palette();
        const int rowHeight = grid.RowHeight();
        TDataSet* data = grid.DataSet();
        if (!data) return;
        const QColor lines = palette.color(QPalette::Midlight);
        painter.setFont(ToQFont(grid.EffectiveFont()));
        int y = grid.TitleHeight();
        const int64_t top = grid.TopRecord();
        const int64_t end = data->Reach(top, (viewport.height() - y + rowHeight - 1) / rowHeight);
        for (int64_t record = top; record < end && y < viewport.height(); ++record, y += rowHeight) {
            PaintRow(painter, viewport, record, y, rowHeight, lines);
        }
    }

    bool WheelsByItself() const override { return false; }
    // The editor in a cell lies on the cells and moves with them.
    QWidget* ClientWidget() const override { return widget_ ? Area()->viewport() : nullptr; }

    void Press(const QPoint& at, TShiftState shift) {
        pressedTitle_ = sizedColumn_ = -1;
        if (at.y() < Self().TitleHeight()) {
            sizedColumn_ = GripAt(at.x());
            if (sizedColumn_ < 0) pressedTitle_ = ColumnAt(at.x());
            pressedAt_ = at;
            moving_ = false;
            return;
        }
        Guard(&Self(), [&] { Self().ProcessCellClick(RecordAt(at.y()), ColumnAt(at.x()), shift); });
    }

    void PressTwice(const QPoint& at) {
        if (at.y() < Self().TitleHeight()) return;
        Guard(&Self(), [&] { Self().ProcessCellDblClick(RecordAt(at.y()), ColumnAt(at.x())); });
    }

    void Move(const QPoint& at) {
        if (sizedColumn_ >= 0) {
            const int width = at.x() - ColumnLeft(sizedColumn_);
            Guard(&Self(), [&] { Self().ProcessColumnResize(sizedColumn_, width); });
            return;
        }
        if (pressedTitle_ >= 0) {
            moving_ = moving_ || std::abs(at.x() - pressedAt_.x()) > kDragDistance;
            return;
        }
        const bool grip = at.y() < Self().TitleHeight() && GripAt(at.x()) >= 0;
        Area()->viewport()->setCursor(grip ? Qt::SplitHCursor : Qt::ArrowCursor);
    }

    void Release(const QPoint& at) {
        const int pressed = pressedTitle_;
        pressedTitle_ = sizedColumn_ = -1;
        if (pressed < 0) return;
        const int target = ColumnAt(at.x());
        Guard(&Self(), [&] {
            if (moving_ && target >= 0 && target != pressed)
                Self().ProcessColumnMove(pressed, target);
            else if (!moving_)
                Self().ProcessTitleClick(pressed);
        });
    }

    void Scrolled() {
        if (updating_ > 0) return;
        Guard(&Self(), [&] {
            Self().ProcessLeftOffset(Area()->horizontalScrollBar()->value());
            Self().ProcessScroll(Area()->verticalScrollBar()->value());
        });
        Area()->viewport()->update();
        UpdateBars();
    }

    void Resized() { UpdateBars(); }

    void Changed(PeerChange what) override {
        if (what == PeerChange::Scroll) {
            UpdateBars();
            Area()->viewport()->update();
            return;
        }
        PeerOf::Changed(what);
        if (what == PeerChange::Invalidate) Area()->viewport()->update();
    }

    QString AccessibleName() const override {
        const TDataSource* source = Self().DataSource();
        return source && source->DataSet() ? ToQt(source->DataSet()->Name()) : QString();
    }

  protected:
    QWidget* MakeWidget(QWidget* parent) override {
        auto* area = new GridWidget(this, parent);
        area->viewport()->setBackgroundRole(QPalette::Base);
        area->viewport()->setMouseTracking(true);
        area->setFocusPolicy(FocusPolicyOf(Self()));
        return area;
    }
    QPalette::ColorRole BackgroundRole() const override { return QPalette::Base; }
    TColor NativeColor() const override { return clWindow; }
    void ApplyStyle() override {
        Area()->setFrameStyle(Self().BorderStyle() == TBorderStyle::bsSingle
                                  ? int(QFrame::StyledPanel) | int(QFrame::Sunken)
                                  : int(QFrame::NoFrame));
        ApplyItems();
    }
    void ApplyItems() override {
        UpdateBars();
        Area()->viewport()->update();
    }
    void ApplySelection() override {
        // The chosen column comes into sight.
        const int left = ColumnLeft(Self().SelectedIndex());
        const auto& columns = Self().ShownColumns();
        QScrollBar* bar = Area()->horizontalScrollBar();
        if (Self().SelectedIndex() < static_cast<int>(columns.size())) {
            const int right = left + columns[static_cast<size_t>(Self().SelectedIndex())]->Width();
            if (left < Self().IndicatorWidth())
                bar->setValue(bar->value() + left - Self().IndicatorWidth());
            else if (right > Area()->viewport()->width())
                bar->setValue(bar->value() +
                              std::min(right - Area()->viewport()->width(), left - Self().IndicatorWidth()));
        }
        UpdateBars();
        Area()->viewport()->update();
    }
    void ApplyFont() override {
        PeerOf::ApplyFont();
        ApplyItems();
    }

  private:
    QAbstractScrollArea* Area() const { return static_cast<QAbstractScrollArea*>(widget_); }

    int64_t RecordAt(int y) const {
        return Self().TopRecord() + (y - Self().TitleHeight()) / std::max(1, Self().RowHeight());
    }
    int ColumnLeft(int index) const {
        int left = Self().IndicatorWidth() - Area()->horizontalScrollBar()->value();
        const auto& columns = Self().ShownColumns();
        for (int i = 0; i < index && i < static_cast<int>(columns.size()); ++i)
            left += columns[static_cast<size_t>(i)]->Width();
        return left;
    }
    int ColumnAt(int x) const {
        const auto& columns = Self().ShownColumns();
        int left = ColumnLeft(0);
        for (size_t i = 0; i < columns.size(); ++i) {
            const int right = left + columns[i]->Width();
            if (x >= left && x < right) return static_cast<int>(i);
            left = right;
        }
        return -1;
    }
    // The column whose right edge is under the mouse.
    int GripAt(int x) const {
        if (!Self().Has(dgColumnResize)) return -1;
        const auto& columns = Self().ShownColumns();
        int right = ColumnLeft(0);
        for (size_t i = 0; i < columns.size(); ++i) {
            right += columns[i]->Width();
            if (std::abs(x - right) <= kGripWidth) return static_cast<int>(i);
        }
        return -1;
    }

    void UpdateBars() {
        const Updating updating(*this);
        TCustomDBGrid& grid = Self();
        const TDataSet* data = grid.DataSet();
        const int rows = grid.VisibleRows();
        QScrollBar* vertical = Area()->verticalScrollBar();
        const int64_t expected = data ? data->RecordsExpected() : 0;
        // While there may be more, one page more can be scrolled to, which fetches it.
        const int64_t beyond = data && !data->IsPaged() && !data->AllFetched() ? rows : 0;
        const int64_t last = std::clamp<int64_t>(expected - rows + beyond, 0, INT_MAX);
        vertical->setRange(0, static_cast<int>(last));
        vertical->setPageStep(rows);
        vertical->setValue(static_cast<int>(std::min<int64_t>(grid.TopRecord(), INT_MAX)));
        int width = grid.IndicatorWidth();
        for (const TColumn* column : grid.ShownColumns()) width += column->Width();
        QScrollBar* horizontal = Area()->horizontalScrollBar();
        horizontal->setRange(0, std::max(0, width - Area()->viewport()->width()));
        horizontal->setPageStep(Area()->viewport()->width());
        horizontal->setSingleStep(grid.RowHeight());
    }

    void PaintTitles(QPainter& painter, const QRect& viewport) {
        const TCustomDBGrid& grid = Self();
        const int height = grid.TitleHeight();
        if (height == 0) return;
        const QPalette& palette = widget_->palette();
        painter.setFont(ToQFont(grid.EffectiveTitleFont()));
        painter.fillRect(QRect(0, 0, viewport.width(), height), ToQColor(grid.FixedColor(), palette));
        int left = ColumnLeft(0);
        for (const TColumn* column : grid.ShownColumns()) {
            const QRect cell(left, 0, column->Width(), height);
            left += column->Width();
            if (cell.right() < 0) continue;
            if (cell.left() > viewport.width()) break;
            painter.setPen(palette.color(QPalette::ButtonText));
            QRect inside = cell.adjusted(kTextMargin, 0, -kTextMargin, 0);
            if (const int direction = grid.SortDirection(*column); direction != 0)
                inside = PaintSortMark(painter, inside, direction);
            painter.drawText(
                inside, AlignmentFlags(column->Title()->Alignment()) | Qt::AlignVCenter,
                painter.fontMetrics().elidedText(ToQt(column->Title()->Caption()), Qt::ElideRight, inside.width()));
            painter.setPen(palette.color(QPalette::Mid));
            painter.drawLine(cell.right(), cell.top() + 3, cell.right(), cell.bottom() - 3);
        }
        if (grid.IndicatorWidth() > 0)
            painter.fillRect(QRect(0, 0, grid.IndicatorWidth(), height), ToQColor(grid.FixedColor(), palette));
        painter.setPen(palette.color(QPalette::Mid));
        painter.drawLine(0, height - 1, viewport.width(), height - 1);
    }

    // A triangle at the title's right end; gives what is left for the text.
    static QRect PaintSortMark(QPainter& painter, const QRect& inside, int direction) {
        constexpr int kHalf = 4;
        const QPoint middle(inside.right() - kHalf, inside.center().y());
        const int tip = direction > 0 ? -kHalf / 2 : kHalf / 2;
        QPolygon mark;
        mark << middle + QPoint(-kHalf, -tip) << middle + QPoint(kHalf, -tip) << middle + QPoint(0, tip);
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setBrush(painter.pen().color());
        painter.setPen(Qt::NoPen);
        painter.drawPolygon(mark);
        painter.restore();
        return inside.adjusted(0, 0, -3 * kHalf, 0);
    }

    void PaintRow(QPainter& painter, const QRect& viewport, int64_t record, int y, int rowHeight, const QColor& lines) {
        TCustomDBGrid& grid = Self();
        const bool current = grid.DataSet()->CurrentRecord() == record;
        const bool marked = grid.Has(dgMultiSelect) && grid.SelectedRows().Contains(record);
        const bool focused = widget_->hasFocus();
        const auto& columns = grid.ShownColumns();
        int left = ColumnLeft(0);
        for (size_t i = 0; i < columns.size(); ++i) {
            const TColumn& column = *columns[i];
            const QRect cell(left, y, column.Width(), rowHeight);
            left += column.Width();
            if (cell.right() < 0) continue;
            if (cell.left() > viewport.width()) break;
            const bool chosen =
                marked || (current && (grid.Has(dgRowSelect) || static_cast<int>(i) == grid.SelectedIndex()));
            PaintCell(painter, cell, column, record, chosen, focused);
            if (grid.Has(dgColLines)) {
                painter.setPen(lines);
                painter.drawLine(cell.right(), cell.top(), cell.right(), cell.bottom());
            }
        }
        if (grid.Has(dgRowLines)) {
            painter.setPen(lines);
            painter.drawLine(grid.IndicatorWidth(), y + rowHeight - 1, std::min(left, viewport.width()) - 1,
                             y + rowHeight - 1);
        }
        if (grid.IndicatorWidth() > 0) PaintIndicator(painter, QRect(0, y, grid.IndicatorWidth(), rowHeight), current);
    }

    void PaintCell(QPainter& painter, const QRect& cell, const TColumn& column, int64_t record, bool chosen,
                   bool focused) {
        const QPalette& palette = widget_->palette();
        if (chosen) {
            const QPalette::ColorGroup group = focused ? QPalette::Active : QPalette::Inactive;
            painter.fillRect(cell, palette.brush(group, QPalette::Highlight));
            painter.setPen(palette.color(group, QPalette::HighlightedText));
        } else {
            if (column.IsColorStored()) painter.fillRect(cell, ToQColor(column.Color(), palette));
            painter.setPen(palette.color(QPalette::Text));
        }
        const QString text = ToQt(Self().CellText(record, column)).simplified();
        if (text.isEmpty()) return;
        const QRect inside = cell.adjusted(kTextMargin, 0, -kTextMargin, 0);
        const bool fits = painter.fontMetrics().horizontalAdvance(text) <= inside.width();
        painter.drawText(inside, AlignmentFlags(column.Alignment()) | Qt::AlignVCenter,
                         fits ? text : painter.fontMetrics().elidedText(text, Qt::ElideRight, inside.width()));
    }

    void PaintIndicator(QPainter& painter, const QRect& cell, bool current) {
        const QPalette& palette = widget_->palette();
        painter.fillRect(cell, ToQColor(Self().FixedColor(), palette));
        if (!current) return;
        // An arrow at the current record; a pencil's stroke while it is edited, a star while it is new.
        const QPointF middle = QRectF(cell).center();
        constexpr qreal kSize = 4;
        const QColor color = palette.color(QPalette::ButtonText);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(color, 1.5));
        switch (Self().DataSet()->State()) {
            case dsEdit:
                painter.drawLine(middle + QPointF(-2, 3), middle + QPointF(2, -4));
                painter.drawPoint(middle + QPointF(-3, 5));
                break;
            case dsInsert:
                for (const QPointF& arm :
                     {QPointF(kSize, 0), QPointF(kSize / 2, kSize * 0.87), QPointF(-kSize / 2, kSize * 0.87)})
                    painter.drawLine(middle - arm, middle + arm);
                break;
            default: {
                QPolygonF arrow;
                arrow << middle + QPointF(-kSize / 2, -kSize) << middle + QPointF(kSize / 2, 0)
                      << middle + QPointF(-kSize / 2, kSize);
                painter.setPen(Qt::NoPen);
                painter.setBrush(color);
                painter.drawPolygon(arrow);
            }
        }
        painter.setRenderHint(QPainter::Antialiasing, false);
    }

    int pressedTitle_ = -1;
    int sizedColumn_ = -1;
    QPoint pressedAt_;
    bool moving_ = false;
};

GridWidget::GridWidget(GridPeer* peer, QWidget* parent) : NativeScrolling<QAbstractScrollArea>(peer, parent) {}

GridPeer* GridWidget::Grid() const { return static_cast<GridPeer*>(Peer()); }

void GridWidget::paintEvent(QPaintEvent*) {
    if (!Grid()) return;
    QPainter painter(viewport());
    Guard(&Grid()->Control(), [&] { Grid()->Paint(painter, viewport()->rect()); });
}

void GridWidget::resizeEvent(QResizeEvent*) {
    if (Grid()) Grid()->Resized();
}

void GridWidget::mousePressEvent(QMouseEvent* event) {
    if (Grid() && event->button() == Qt::LeftButton)
        Grid()->Press(event->position().toPoint(), ToShiftState(event->modifiers()));
}

void GridWidget::mouseMoveEvent(QMouseEvent* event) {
    if (Grid()) Grid()->Move(event->position().toPoint());
}

void GridWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (Grid() && event->button() == Qt::LeftButton) Grid()->Release(event->position().toPoint());
}

void GridWidget::mouseDoubleClickEvent(QMouseEvent* event) {
    if (Grid() && event->button() == Qt::LeftButton) Grid()->PressTwice(event->position().toPoint());
}

void GridWidget::scrollContentsBy(int, int) {
    if (Grid()) Grid()->Scrolled();
}

}  // namespace grid_detail

void RegisterGridPeers() { RegisterPeer(&TCustomDBGrid::StaticClass(), &NewPeer<grid_detail::GridPeer>); }

}  // namespace vyn::qt
