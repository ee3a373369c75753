#pragma once

#include <QRect>
#include <QString>

class QAccessibleInterface;
class QWidget;

namespace vyn::qt {

// The rows of a widget that draws them itself, as assistive technology sees them.
class AccessibleRows {
  public:
    virtual ~AccessibleRows() = default;
    virtual int RowCount() = 0;
    virtual QString RowText(int row) = 0;
    // In the widget's coordinates; empty when the row is scrolled away.
    virtual QRect RowRect(int row) = 0;
    virtual int RowAt(const QPoint& at) = 0;  // -1: none
    virtual bool RowSelected(int row) = 0;
    virtual bool RowExpandable(int row) = 0;
    virtual bool RowExpanded(int row) = 0;
    virtual void SelectRow(int row) = 0;
    virtual void ExpandRow(int row, bool expand) = 0;
};

// Null for widgets without such rows.
QAccessibleInterface* MakeRowsInterface(QWidget* widget);

}  // namespace vyn::qt
