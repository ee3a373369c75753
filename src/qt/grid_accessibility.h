#pragma once

#include <QRect>
#include <QString>

class QAccessibleInterface;
class QWidget;

namespace vyn::qt {

// The cells of a widget that draws them itself, as assistive technology sees them. Places are the viewport's.
class AccessibleGrid {
  public:
    virtual ~AccessibleGrid() = default;
    virtual int RowCount() = 0;
    virtual int ColumnCount() = 0;
    virtual QString CellText(int row, int column) = 0;
    virtual QString ColumnTitle(int column) = 0;
    // Empty when the cell is scrolled away.
    virtual QRect CellRect(int row, int column) = 0;
    virtual bool CellAt(const QPoint& at, int& row, int& column) = 0;
    virtual bool CellSelected(int row, int column) = 0;
    virtual void SelectCell(int row, int column) = 0;
};

// Null for widgets without such cells.
QAccessibleInterface* MakeGridInterface(QWidget* widget);

}  // namespace vyn::qt
