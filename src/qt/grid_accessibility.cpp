#include "qt/grid_accessibility.h"

#include <QAbstractScrollArea>
#include <QAccessibleWidget>
#include <QPointer>
#include <climits>
#include <unordered_map>

namespace vyn::qt {

namespace grid_accessibility_detail {

class GridInterface;

// One cell. Knows only its numbers: a cell that is no more is invalid.
class CellInterface final : public QAccessibleInterface,
                            public QAccessibleTableCellInterface,
                            public QAccessibleActionInterface {
  public:
    CellInterface(QWidget* widget, int row, int column) : widget_(widget), row_(row), column_(column) {}

    bool isValid() const override { return Grid() && row_ < Grid()->RowCount() && column_ < Grid()->ColumnCount(); }
    QObject* object() const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(widget_.data()); }
    QAccessibleInterface* child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::Cell; }
    void setText(QAccessible::Text, const QString&) override {}
    QString text(QAccessible::Text kind) const override {
        if (!isValid()) return {};
        if (kind == QAccessible::Name) return Grid()->CellText(row_, column_);
        return kind == QAccessible::Description ? Grid()->ColumnTitle(column_) : QString();
    }
    QRect rect() const override {
        const QRect place = isValid() ? Grid()->CellRect(row_, column_) : QRect();
        const auto* area = static_cast<QAbstractScrollArea*>(widget_.data());
        return place.isEmpty() ? QRect() : QRect(area->viewport()->mapToGlobal(place.topLeft()), place.size());
    }
    QAccessible::State state() const override {
        QAccessible::State state;
        if (!isValid()) {
            state.invalid = true;
            return state;
        }
        state.selectable = true;
        state.focusable = true;
        state.readOnly = true;  // it is edited by a control of its own
        state.selected = Grid()->CellSelected(row_, column_);
        state.focused = state.selected && widget_->hasFocus();
        state.offscreen = Grid()->CellRect(row_, column_).isEmpty();
        return state;
    }
    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::TableCellInterface) return static_cast<QAccessibleTableCellInterface*>(this);
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
    }

    bool isSelected() const override { return isValid() && Grid()->CellSelected(row_, column_); }
    QList<QAccessibleInterface*> columnHeaderCells() const override { return {}; }
    QList<QAccessibleInterface*> rowHeaderCells() const override { return {}; }
    int columnIndex() const override { return column_; }
    int rowIndex() const override { return row_; }
    int columnExtent() const override { return 1; }
    int rowExtent() const override { return 1; }
    QAccessibleInterface* table() const override { return parent(); }

    QStringList actionNames() const override { return {setFocusAction()}; }
    void doAction(const QString& name) override {
        if (isValid() && name == setFocusAction()) Grid()->SelectCell(row_, column_);
    }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

  private:
    AccessibleGrid* Grid() const { return dynamic_cast<AccessibleGrid*>(widget_.data()); }
    QPointer<QWidget> widget_;
    int row_;
    int column_;
};

class GridInterface final : public QAccessibleWidget, public QAccessibleTableInterface {
  public:
    explicit GridInterface(QWidget* widget) : QAccessibleWidget(widget, QAccessible::Table) {}
    ~GridInterface() override {
        for (const auto& [place, id] : ids_) QAccessible::deleteAccessibleInterface(id);
    }
    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::TableInterface ? static_cast<QAccessibleTableInterface*>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }

    // Cells are numbered row by row; as many as there are numbers for.
    int childCount() const override {
        const int columns = columnCount();
        return columns == 0 ? 0 : std::min(rowCount(), INT_MAX / columns) * columns;
    }
    QAccessibleInterface* child(int index) const override {
        const int columns = columnCount();
        return index < 0 || columns == 0 ? nullptr : cellAt(index / columns, index % columns);
    }
    QAccessibleInterface* childAt(int x, int y) const override {
        int row = 0, column = 0;
        const QPoint at = static_cast<QAbstractScrollArea*>(widget())->viewport()->mapFromGlobal(QPoint(x, y));
        return Grid().CellAt(at, row, column) ? cellAt(row, column) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        auto* cell = const_cast<QAccessibleInterface*>(child)->tableCellInterface();
        return cell ? cell->rowIndex() * columnCount() + cell->columnIndex() : -1;
    }

    QAccessibleInterface* caption() const override { return nullptr; }
    QAccessibleInterface* summary() const override { return nullptr; }
    QAccessibleInterface* cellAt(int row, int column) const override {
        if (row < 0 || column < 0 || row >= rowCount() || column >= columnCount()) return nullptr;
        QAccessible::Id& id = ids_[static_cast<int64_t>(row) * columnCount() + column];
        if (QAccessibleInterface* known = id ? QAccessible::accessibleInterface(id) : nullptr)
            if (auto* cell = known->tableCellInterface(); cell->rowIndex() == row && cell->columnIndex() == column)
                return known;
        id = QAccessible::registerAccessibleInterface(new CellInterface(widget(), row, column));
        return QAccessible::accessibleInterface(id);
    }
    int selectedCellCount() const override { return static_cast<int>(selectedCells().size()); }
    // Those in sight: what is marked elsewhere would have to be looked for in every row.
    QList<QAccessibleInterface*> selectedCells() const override {
        QList<QAccessibleInterface*> cells;
        ForRowsInSight([&](int row) {
            for (int column = 0; column < columnCount(); ++column)
                if (Grid().CellSelected(row, column)) cells << cellAt(row, column);
        });
        return cells;
    }
    QString columnDescription(int column) const override { return Grid().ColumnTitle(column); }
    QString rowDescription(int) const override { return {}; }
    int selectedColumnCount() const override { return 0; }
    int selectedRowCount() const override { return static_cast<int>(selectedRows().size()); }
    int columnCount() const override { return Grid().ColumnCount(); }
    int rowCount() const override { return Grid().RowCount(); }
    QList<int> selectedColumns() const override { return {}; }
    QList<int> selectedRows() const override {
        QList<int> rows;
        ForRowsInSight([&](int row) {
            if (isRowSelected(row)) rows << row;
        });
        return rows;
    }
    bool isColumnSelected(int) const override { return false; }
    bool isRowSelected(int row) const override {
        for (int column = 0; column < columnCount(); ++column)
            if (!Grid().CellSelected(row, column)) return false;
        return columnCount() > 0;
    }
    bool selectRow(int row) override {
        if (row < 0 || row >= rowCount()) return false;
        Grid().SelectCell(row, 0);
        return true;
    }
    bool selectColumn(int) override { return false; }
    bool unselectRow(int) override { return false; }
    bool unselectColumn(int) override { return false; }
    void modelChange(QAccessibleTableModelChangeEvent*) override {}

  private:
    template <class F>
    void ForRowsInSight(const F& visit) const {
        int row = 0, column = 0;
        const QWidget* viewport = static_cast<QAbstractScrollArea*>(widget())->viewport();
        int first = -1, last = -1;
        for (int y = 0; y < viewport->height(); ++y)
            if (Grid().CellAt(QPoint(viewport->width() / 2, y), row, column)) {
                if (first < 0) first = row;
                last = row;
            }
        for (int each = std::max(first, 0); each <= last; ++each) visit(each);
    }
    AccessibleGrid& Grid() const { return *dynamic_cast<AccessibleGrid*>(widget()); }
    mutable std::unordered_map<int64_t, QAccessible::Id> ids_;
};

}  // namespace grid_accessibility_detail

QAccessibleInterface* MakeGridInterface(QWidget* widget) {
    return dynamic_cast<AccessibleGrid*>(widget) ? new grid_accessibility_detail::GridInterface(widget) : nullptr;
}

}  // namespace vyn::qt
