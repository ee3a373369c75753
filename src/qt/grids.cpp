#include "qt/grid_peer.h"

#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <algorithm>
#include <climits>
#include <cstdlib>

#include "qt/factory.h"
#include "qt/keys.h"
#include "qt/looks.h"
#include "qt/painted.h"
#include "qt/text.h"

// Grids over datasets.
namespace vyn::qt {

namespace grid_detail {

constexpr int kTextMargin = 4;
constexpr int kGripWidth = 4;     // around a title's right edge: the mouse sizes the column there
constexpr int kDragDistance = 6;  // beyond this a pressed title is being moved

void DrawShapes(QPainter& painter, const std::vector<TCanvas::Shape>& shapes, const QPalette& palette) {
    for (const TCanvas::Shape& shape : shapes) {
        const QRect place = ToQRect(shape.Place);
        const QColor color = ToQColor(shape.Color, palette);
        switch (shape.What) {
            case TCanvas::Shape::Kind::Fill:
                painter.fillRect(place, color);
                break;
            case TCanvas::Shape::Kind::Text: {
                const QRect inside = place.adjusted(kTextMargin, 0, -kTextMargin, 0);
                painter.setFont(ToQFont(*shape.Font));
                painter.setPen(color);
                painter.drawText(inside, AlignmentFlags(shape.Alignment) | Qt::AlignVCenter,
                                 painter.fontMetrics().elidedText(ToQt(shape.Text), Qt::ElideRight, inside.width()));
                break;
            }
            case TCanvas::Shape::Kind::Line:
                painter.setPen(QPen(color, shape.Width));
                painter.drawLine(shape.Place.Left, shape.Place.Top, shape.Place.Right, shape.Place.Bottom);
                break;
        }
    }
}

// A triangle at the title's right end; gives what is left for the text.
QRect PaintSortMark(QPainter& painter, const QRect& inside, int direction) {
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

// Whether another grid of the form has no label either.
bool HasOtherWithoutLabel(const TWinControl& parent, const TCustomDBGrid& grid) {
    for (const TWinControl* control : parent.WindowedControls()) {
        const auto* other = ObjectCast<TCustomDBGrid>(control);
        if (other && other != &grid && LabelOf(*other).isEmpty()) return true;
        if (HasOtherWithoutLabel(*control, grid)) return true;
    }
    return false;
}

}  // namespace grid_detail

using namespace grid_detail;

// Painting.

void GridPeer::Paint(QPainter& painter, const QRect& viewport) {
    PaintTitles(painter, viewport);
    if (Self().DataSet()) PaintRows(painter, viewport);
}

void GridPeer::PaintTitles(QPainter& painter, const QRect& viewport) {
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
        if (column->Title()->IsColorStored()) painter.fillRect(cell, ToQColor(column->Title()->Color(), palette));
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

std::vector<GridPeer::Shown> GridPeer::ColumnsInSight(const QRect& viewport) const {
    std::vector<Shown> shown;
    const auto& columns = Self().ShownColumns();
    int left = ColumnLeft(0);
    for (size_t i = 0; i < columns.size() && left <= viewport.width(); ++i) {
        const int width = columns[i]->Width();
        if (left + width > 0)
            shown.push_back({columns[i], columns[i]->Field(), static_cast<int>(i), left, width,
                             static_cast<int>(i) == Self().SelectedIndex()});
        left += width;
    }
    return shown;
}

// What is alike is drawn together, for all rows: backgrounds, then texts by their colours, then lines.
void GridPeer::PaintRows(QPainter& painter, const QRect& viewport) {
    TCustomDBGrid& grid = Self();
    TDataSet& data = *grid.DataSet();
    const QPalette& palette = widget_->palette();
    const int rowHeight = std::max(grid.RowHeight(), 1);
    const int top = grid.TitleHeight();
    const int64_t first = grid.TopRecord();
    const int64_t rows = (viewport.height() - top + rowHeight - 1) / rowHeight;
    const int64_t end = std::min(first + rows, data.Reach(first, rows));
    if (end <= first) return;
    const int bottom = top + static_cast<int>(end - first) * rowHeight;
    const std::vector<Shown> columns = ColumnsInSight(viewport);
    const int right = columns.empty() ? grid.IndicatorWidth() : columns.back().left + columns.back().width;
    for (const Shown& each : columns)
        if (each.column->IsColorStored())
            painter.fillRect(each.left, top, each.width, bottom - top, ToQColor(each.column->Color(), palette));

    const QPalette::ColorGroup group = HasKeyboard() ? QPalette::Active : QPalette::Inactive;
    const QColor highlight = palette.color(group, QPalette::Highlight);
    const int64_t current = grid.HighlightedRecord();
    if (!glyphs_) glyphs_.emplace(ToQFont(grid.EffectiveFont()));
    const bool handlers = grid.DrawnByHandlers();
    const bool texts = grid.DefaultDrawing || !handlers;
    GlyphBatch plain(*glyphs_);
    GlyphBatch highlighted(*glyphs_);
    for (int64_t record = first; record < end; ++record) {
        const int y = top + static_cast<int>(record - first) * rowHeight;
        const bool marked = grid.Has(dgMultiSelect) && grid.SelectedRows().Contains(record);
        const bool whole = marked || (record == current && grid.Has(dgRowSelect));
        for (const Shown& each : columns) {
            const bool chosen = whole || (record == current && each.selected);
            if (chosen) painter.fillRect(each.left, y, each.width, rowHeight, highlight);
            if (!each.field || !texts) continue;
            (chosen ? highlighted : plain)
                .Add(QRect(each.left + kTextMargin, y, each.width - 2 * kTextMargin, rowHeight),
                     Qt::Alignment(AlignmentFlags(each.column->Alignment())), each.field->DisplayTextOf(record));
        }
    }
    plain.Draw(painter, palette.color(QPalette::Text));
    highlighted.Draw(painter, palette.color(group, QPalette::HighlightedText));
    if (handlers) {
        PaintByHandlers(painter, columns, first, end);
        if (grid.DataSet() != &data) return;  // a handler closed it
    }

    const QColor lines = palette.color(QPalette::Midlight);
    if (grid.Has(dgColLines))
        for (const Shown& each : columns) painter.fillRect(each.left + each.width - 1, top, 1, bottom - top, lines);
    if (grid.Has(dgRowLines))
        for (int y = top + rowHeight - 1; y < bottom; y += rowHeight)
            painter.fillRect(grid.IndicatorWidth(), y, std::min(right, viewport.width()) - grid.IndicatorWidth(), 1,
                             lines);
    if (grid.IndicatorWidth() == 0) return;
    painter.fillRect(0, top, grid.IndicatorWidth(), bottom - top, ToQColor(grid.FixedColor(), palette));
    if (current >= first && current < end)
        PaintIndicator(painter,
                       QRect(0, top + static_cast<int>(current - first) * rowHeight, grid.IndicatorWidth(), rowHeight));
}

void GridPeer::PaintByHandlers(QPainter& painter, const std::vector<Shown>& columns, int64_t first, int64_t end) {
    TCustomDBGrid& grid = Self();
    const TDataSet* data = grid.DataSet();
    const int rowHeight = std::max(grid.RowHeight(), 1);
    for (int64_t record = first; record < end; ++record) {
        const int y = grid.TitleHeight() + static_cast<int>(record - first) * rowHeight;
        for (const Shown& each : columns) {
            TGridDrawState state;
            if (grid.HighlightedRecord() == record && (each.selected || grid.Has(dgRowSelect)))
                state = {gdSelected, gdFocused};
            if (grid.Has(dgMultiSelect) && grid.SelectedRows().Contains(record)) state.Include(gdSelected);
            const TRect cell = Bounds(each.left, y, each.width, rowHeight);
            grid.DrawCell(record, each.index, cell, state);
            painter.save();
            painter.setClipRect(ToQRect(cell));
            DrawShapes(painter, grid.Canvas()->Shapes(), widget_->palette());
            painter.restore();
            if (grid.DataSet() != data) return;
        }
    }
}

void GridPeer::PaintIndicator(QPainter& painter, const QRect& cell) {
    const QPalette& palette = widget_->palette();
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

// The mouse.

void GridPeer::Press(const QPoint& at, TShiftState shift) {
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

void GridPeer::PressTwice(const QPoint& at) {
    if (at.y() < Self().TitleHeight()) return;
    Guard(&Self(), [&] { Self().ProcessCellDblClick(RecordAt(at.y()), ColumnAt(at.x())); });
}

void GridPeer::Move(const QPoint& at) {
    if (sizedColumn_ >= 0) {
        const int width = at.x() - ColumnLeft(sizedColumn_);
        Guard(&Self(), [&] { Self().ProcessColumnResize(sizedColumn_, width); });
        return;
    }
    if (pressedTitle_ >= 0) {
        moving_ = moving_ || std::abs(at.x() - pressedAt_.x()) > kDragDistance;
        return;
    }
    const bool title = at.y() < Self().TitleHeight();
    const bool grip = title && GripAt(at.x()) >= 0;
    Area()->viewport()->setCursor(grip ? Qt::SplitHCursor : Qt::ArrowCursor);
    if (!title && Area()->viewport()->rect().contains(at))
        Guard(&Self(), [&] { Self().ProcessRecordHover(RecordAt(at.y())); });
}

void GridPeer::Release(const QPoint& at) {
    const int pressed = pressedTitle_;
    const bool sized = sizedColumn_ >= 0;
    pressedTitle_ = sizedColumn_ = -1;
    const int target = ColumnAt(at.x());
    Guard(&Self(), [&] {
        if (pressed >= 0) {
            if (moving_ && target >= 0 && target != pressed)
                Self().ProcessColumnMove(pressed, target);
            else if (!moving_)
                Self().ProcessTitleClick(pressed);
        } else if (!sized && at.y() >= Self().TitleHeight()) {
            Self().ProcessRecordRelease(Area()->viewport()->rect().contains(at) ? RecordAt(at.y()) : -1);
        }
    });
}

void GridPeer::Scrolled() {
    if (updating_ > 0) return;
    Guard(&Self(), [&] {
        Self().ProcessLeftOffset(Area()->horizontalScrollBar()->value());
        Self().ProcessScroll(Area()->verticalScrollBar()->value());
    });
    Area()->viewport()->update();
    UpdateBars();
}

void GridPeer::Changed(PeerChange what) {
    if (what == PeerChange::Scroll) {
        UpdateBars();
        Area()->viewport()->update();
        return;
    }
    PeerOf::Changed(what);
    if (what == PeerChange::Invalidate) Area()->viewport()->update();
}

// A label's name; else what its window is called after, when no other grid there is without one; else its dataset's.
QString GridPeer::AccessibleName() const {
    if (const QString label = PeerOf::AccessibleName(); !label.isEmpty()) return label;
    const TCustomForm* form = GetParentForm(&Self());
    if (form && !form->Caption().empty() && !grid_detail::HasOtherWithoutLabel(*form, Self()))
        return ToQt(form->Caption());
    const TDataSource* source = Self().DataSource();
    return source && source->DataSet() ? ToQt(source->DataSet()->Name()) : QString();
}

// The control's state.

QWidget* GridPeer::MakeWidget(QWidget* parent) {
    auto* area = new GridWidget(this, parent);
    area->viewport()->setBackgroundRole(QPalette::Base);
    area->viewport()->setMouseTracking(true);
    area->setFocusPolicy(FocusPolicyOf(Self()));
    return area;
}

void GridPeer::ApplyStyle() {
    Area()->setFrameStyle(Self().BorderStyle() == TBorderStyle::bsSingle
                              ? int(QFrame::StyledPanel) | int(QFrame::Sunken)
                              : int(QFrame::NoFrame));
    ApplyItems();
}

void GridPeer::ApplyItems() {
    UpdateBars();
    Area()->viewport()->update();
}

void GridPeer::ApplySelection() {
    // The chosen column comes into sight.
    const int left = ColumnLeft(Self().SelectedIndex());
    const auto& columns = Self().ShownColumns();
    QScrollBar* bar = Area()->horizontalScrollBar();
    if (Self().SelectedIndex() < static_cast<int>(columns.size())) {
        const int right = left + columns[static_cast<size_t>(Self().SelectedIndex())]->Width();
        if (left < Self().IndicatorWidth())
            bar->setValue(bar->value() + left - Self().IndicatorWidth());
        else if (right > Area()->viewport()->width())
            bar->setValue(bar->value() + std::min(right - Area()->viewport()->width(), left - Self().IndicatorWidth()));
    }
    UpdateBars();
    Area()->viewport()->update();
}
void GridPeer::ApplyFont() {
    glyphs_.reset();
    PeerOf::ApplyFont();
    ApplyItems();
}

int64_t GridPeer::RecordAt(int y) const {
    return Self().TopRecord() + (y - Self().TitleHeight()) / std::max(1, Self().RowHeight());
}

int GridPeer::ColumnLeft(int index) const {
    int left = Self().IndicatorWidth() - Area()->horizontalScrollBar()->value();
    const auto& columns = Self().ShownColumns();
    for (int i = 0; i < index && i < static_cast<int>(columns.size()); ++i)
        left += columns[static_cast<size_t>(i)]->Width();
    return left;
}

int GridPeer::ColumnAt(int x) const {
    const auto& columns = Self().ShownColumns();
    int left = ColumnLeft(0);
    for (size_t i = 0; i < columns.size(); ++i) {
        const int right = left + columns[i]->Width();
        if (x >= left && x < right) return static_cast<int>(i);
        left = right;
    }
    return -1;
}
int GridPeer::GripAt(int x) const {
    if (!Self().Has(dgColumnResize)) return -1;
    const auto& columns = Self().ShownColumns();
    int right = ColumnLeft(0);
    for (size_t i = 0; i < columns.size(); ++i) {
        right += columns[i]->Width();
        if (std::abs(x - right) <= kGripWidth) return static_cast<int>(i);
    }
    return -1;
}

void GridPeer::UpdateBars() {
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

// The widget.

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

// What assistive technology sees.

int GridWidget::RowCount() {
    const TDataSet* records = Grid() ? Grid()->Grid().DataSet() : nullptr;
    if (!records) return 0;
    return static_cast<int>(
        std::min<int64_t>(records->IsPaged() ? records->RecordsExpected() : records->RecordsFetched(), INT_MAX));
}

int GridWidget::ColumnCount() { return Grid() ? static_cast<int>(Grid()->Grid().ShownColumns().size()) : 0; }

// Nobody who only listens moves the window of a large result.
QString GridWidget::CellText(int row, int column) {
    if (Grid()->Grid().DataSet()->RowOf(row) < 0) return {};
    return ToQt(Grid()->Grid().CellText(row, *Grid()->Grid().ShownColumns()[static_cast<size_t>(column)]));
}

QString GridWidget::ColumnTitle(int column) {
    if (column < 0 || column >= ColumnCount()) return {};
    return ToQt(Grid()->Grid().ShownColumns()[static_cast<size_t>(column)]->Title()->Caption());
}

QRect GridWidget::CellRect(int row, int column) {
    const TCustomDBGrid& grid = Grid()->Grid();
    if (row < grid.TopRecord() || row > grid.TopRecord() + grid.VisibleRows()) return {};
    return ToQRect(grid.CellRect(column, row)).intersected(viewport()->rect());
}

bool GridWidget::CellAt(const QPoint& at, int& row, int& column) {
    if (!Grid() || at.y() < Grid()->Grid().TitleHeight()) return false;
    row = static_cast<int>(std::min<int64_t>(Grid()->RecordAt(at.y()), INT_MAX));
    column = Grid()->ColumnAt(at.x());
    return row < RowCount() && column >= 0;
}

bool GridWidget::CellSelected(int row, int column) {
    const TCustomDBGrid& grid = Grid()->Grid();
    if (grid.Has(dgMultiSelect) && grid.SelectedRows().Contains(row)) return true;
    return grid.HighlightedRecord() == row && (grid.Has(dgRowSelect) || grid.SelectedIndex() == column);
}

void GridWidget::SelectCell(int row, int column) {
    Guard(&Grid()->Grid(), [&] { Grid()->Grid().ProcessCellClick(row, column); });
}

void RegisterGridPeers() { RegisterPeer(&TCustomDBGrid::StaticClass(), &NewPeer<GridPeer>); }

}  // namespace vyn::qt
