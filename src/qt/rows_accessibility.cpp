#include "qt/rows_accessibility.h"

#include <QAccessibleWidget>
#include <QPointer>
#include <QWidget>
#include <vector>

namespace vyn::qt {

namespace rows_detail {

class RowsInterface;

// One row. Knows only its number: a row that is no more is invalid.
class RowInterface final : public QAccessibleInterface, public QAccessibleActionInterface {
  public:
    RowInterface(QWidget* widget, int row) : widget_(widget), row_(row) {}

    bool isValid() const override { return Rows() && row_ < Rows()->RowCount(); }
    QObject* object() const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(widget_.data()); }
    QAccessibleInterface* child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::TreeItem; }
    void setText(QAccessible::Text, const QString&) override {}
    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Name && isValid() ? Rows()->RowText(row_) : QString();
    }
    QRect rect() const override {
        if (!isValid()) return {};
        const QRect place = Rows()->RowRect(row_);
        return place.isEmpty() ? QRect() : QRect(widget_->mapToGlobal(place.topLeft()), place.size());
    }
    QAccessible::State state() const override {
        QAccessible::State state;
        if (!isValid()) {
            state.invalid = true;
            return state;
        }
        state.selectable = true;
        state.focusable = true;
        state.selected = Rows()->RowSelected(row_);
        state.focused = state.selected && widget_->hasFocus();
        state.expandable = Rows()->RowExpandable(row_);
        state.expanded = state.expandable && Rows()->RowExpanded(row_);
        state.collapsed = state.expandable && !state.expanded;
        state.offscreen = Rows()->RowRect(row_).isEmpty();
        return state;
    }
    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
    }
    QStringList actionNames() const override {
        QStringList names{setFocusAction()};
        if (isValid() && Rows()->RowExpandable(row_)) names << toggleAction();
        return names;
    }
    void doAction(const QString& name) override {
        if (!isValid()) return;
        if (name == toggleAction())
            Rows()->ExpandRow(row_, !Rows()->RowExpanded(row_));
        else
            Rows()->SelectRow(row_);
    }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

  private:
    AccessibleRows* Rows() const { return dynamic_cast<AccessibleRows*>(widget_.data()); }
    QPointer<QWidget> widget_;
    int row_;
};

class RowsInterface final : public QAccessibleWidget {
  public:
    explicit RowsInterface(QWidget* widget) : QAccessibleWidget(widget, QAccessible::Tree) {}
    ~RowsInterface() override {
        for (const QAccessible::Id id : ids_)
            if (id != 0) QAccessible::deleteAccessibleInterface(id);
    }

    int childCount() const override { return Rows().RowCount(); }
    QAccessibleInterface* child(int index) const override {
        if (index < 0 || index >= childCount()) return nullptr;
        const auto at = static_cast<size_t>(index);
        if (ids_.size() <= at) ids_.resize(at + 1, 0);
        if (ids_[at] == 0) ids_[at] = QAccessible::registerAccessibleInterface(new RowInterface(widget(), index));
        return QAccessible::accessibleInterface(ids_[at]);
    }
    QAccessibleInterface* childAt(int x, int y) const override {
        return child(Rows().RowAt(widget()->mapFromGlobal(QPoint(x, y))));
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        for (size_t i = 0; i < ids_.size(); ++i)
            if (ids_[i] != 0 && QAccessible::accessibleInterface(ids_[i]) == child) return static_cast<int>(i);
        return -1;
    }

  private:
    AccessibleRows& Rows() const { return *dynamic_cast<AccessibleRows*>(widget()); }
    mutable std::vector<QAccessible::Id> ids_;
};

}  // namespace rows_detail

QAccessibleInterface* MakeRowsInterface(QWidget* widget) {
    return dynamic_cast<AccessibleRows*>(widget) ? new rows_detail::RowsInterface(widget) : nullptr;
}

}  // namespace vyn::qt
