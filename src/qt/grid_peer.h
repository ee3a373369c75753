#pragma once

#include <QAbstractScrollArea>
#include <QScrollBar>
#include <optional>

#include "platform/controls/db_grids.h"
#include "qt/glyph_text.h"
#include "qt/grid_accessibility.h"
#include "qt/widget_peer.h"

class QPainter;

namespace vyn::qt {

class GridPeer;

// The widget of a grid: bars, and a viewport that the peer paints.
class GridWidget final : public NativeScrolling<QAbstractScrollArea>, public AccessibleGrid {
  public:
    GridWidget(GridPeer* peer, QWidget* parent);

    int RowCount() override;
    int ColumnCount() override;
    QString CellText(int row, int column) override;
    QString ColumnTitle(int column) override;
    QRect CellRect(int row, int column) override;
    bool CellAt(const QPoint& at, int& row, int& column) override;
    bool CellSelected(int row, int column) override;
    void SelectCell(int row, int column) override;

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

// The peer of grids over datasets: paints the cells that are in sight, and asks the grid for those alone.
class GridPeer : public PeerOf<TCustomDBGrid> {
  public:
    using PeerOf::PeerOf;

    void Paint(QPainter& painter, const QRect& viewport);
    bool WheelsByItself() const override { return false; }
    // The editor in a cell lies on the cells and moves with them.
    QWidget* ClientWidget() const override { return widget_ ? Area()->viewport() : nullptr; }
    void Changed(PeerChange what) override;
    QString AccessibleName() const override;
    TCustomDBGrid& Grid() const { return Self(); }

    // What the mouse and the bars do, at places of the viewport.
    void Press(const QPoint& at, TShiftState shift);
    void PressTwice(const QPoint& at);
    void Move(const QPoint& at);
    void Release(const QPoint& at);
    void Scrolled();
    void Resized() { UpdateBars(); }

    int64_t RecordAt(int y) const;
    int ColumnAt(int x) const;

  protected:
    QWidget* MakeWidget(QWidget* parent) override;
    QPalette::ColorRole BackgroundRole() const override { return QPalette::Base; }
    TColor NativeColor() const override { return clWindow; }
    void ApplyStyle() override;
    void ApplyItems() override;
    void ApplySelection() override;
    void ApplyFont() override;
    // Whether the highlighted cells are drawn as those that keys move.
    virtual bool HasKeyboard() const { return widget_->hasFocus(); }

  private:
    // A column in sight.
    struct Shown {
        const TColumn* column;
        const TField* field;
        int index;
        int left;
        int width;
        bool selected;
    };
    QAbstractScrollArea* Area() const { return static_cast<QAbstractScrollArea*>(widget_); }
    int ColumnLeft(int index) const;
    // The column whose right edge is under the mouse.
    int GripAt(int x) const;
    void UpdateBars();
    std::vector<Shown> ColumnsInSight(const QRect& viewport) const;
    void PaintTitles(QPainter& painter, const QRect& viewport);
    void PaintRows(QPainter& painter, const QRect& viewport);
    void PaintByHandlers(QPainter& painter, const std::vector<Shown>& columns, int64_t first, int64_t end);
    void PaintIndicator(QPainter& painter, const QRect& cell);

    std::optional<GlyphFont> glyphs_;
    int pressedTitle_ = -1;
    int sizedColumn_ = -1;
    QPoint pressedAt_;
    bool moving_ = false;
};

}  // namespace vyn::qt
