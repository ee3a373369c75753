#include "qt/accessibility.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QApplication>
#include <QWidget>
#include <functional>

#include "controls/base_edit_box.h"
#include "platform/controls/bit_buttons.h"
#include "platform/controls/db_lookups.h"
#include "platform/controls/groups.h"
#include "platform/controls/images.h"
#include "platform/controls/labels.h"
#include "platform/controls/lists.h"
#include "platform/controls/pages.h"
#include "platform/controls/panels.h"
#include "platform/controls/status_bars.h"
#include "platform/controls/tool_bars.h"
#include "platform/controls/tree_views.h"
#include "qt/grid_accessibility.h"
#include "qt/rows_accessibility.h"
#include "qt/text.h"
#include "qt/widget_peer.h"

namespace vyn::qt {

namespace accessibility_detail {

// What a widget that we draw ourselves is; NoRole for the toolkit's own, which know it.
QAccessible::Role RoleOf(const TControl& control) {
    if (ObjectCast<TCustomLabel>(&control) || ObjectCast<TCustomStaticText>(&control)) return QAccessible::StaticText;
    if (ObjectCast<TImage>(&control)) return QAccessible::Graphic;
    if (ObjectCast<TCustomGroupBox>(&control)) return QAccessible::Grouping;
    if (ObjectCast<TCustomPanel>(&control)) return QAccessible::Pane;
    if (ObjectCast<TStatusBar>(&control)) return QAccessible::StatusBar;
    if (ObjectCast<TToolBar>(&control)) return QAccessible::ToolBar;
    if (ObjectCast<TSplitter>(&control)) return QAccessible::Splitter;
    if (ObjectCast<TTabSheet>(&control)) return QAccessible::Pane;
    return QAccessible::NoRole;
}

// What a press does to a button that we draw ourselves; empty for everything else.
std::function<void()> PressOf(TControl& control) {
    if (auto* speed = ObjectCast<TSpeedButton>(&control)) return [speed] { speed->ProcessPress(); };
    if (auto* tool = ObjectCast<TToolButton>(&control)) return [tool] { tool->ProcessPress(); };
    if (auto* inside = ObjectCast<TVynEditBoxSpeedButton>(&control)) return [inside] { inside->Click(); };
    return {};
}

// Such a button can be pressed, as any other.
class PressedInterface final : public QAccessibleWidget {
  public:
    PressedInterface(QWidget* widget, TControl& button)
        : QAccessibleWidget(widget, QAccessible::Button), button_(button) {}
    QStringList actionNames() const override {
        return widget()->isEnabled() ? QStringList{pressAction()} : QStringList{};
    }
    void doAction(const QString& action) override {
        const auto* link = dynamic_cast<PeerLink*>(widget());
        if (action != pressAction() || !widget()->isEnabled() || !link || !link->Peer()) return;
        Guard(&button_, PressOf(button_));
    }

  private:
    TControl& button_;  // while the widget has a peer
};

// A combo box that we draw ourselves says what it shows.
class LookupComboInterface final : public QAccessibleWidget {
  public:
    LookupComboInterface(QWidget* widget, const TDBLookupComboBox& box)
        : QAccessibleWidget(widget, QAccessible::ComboBox), box_(box) {}
    QString text(QAccessible::Text kind) const override {
        const auto* link = dynamic_cast<PeerLink*>(widget());
        if (kind == QAccessible::Value && link && link->Peer()) return ToQt(box_.Text());
        return QAccessibleWidget::text(kind);
    }
    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        const auto* link = dynamic_cast<PeerLink*>(widget());
        state.hasPopup = true;
        state.expandable = true;
        state.expanded = link && link->Peer() && box_.DroppedDown();
        state.collapsed = !state.expanded;
        return state;
    }

  private:
    const TDBLookupComboBox& box_;  // while the widget has a peer
};

void NameWidget(QWidget& widget, const WidgetPeer& peer) {
    if (widget.accessibleName().isEmpty())
        if (const QString name = peer.AccessibleName(); !name.isEmpty()) widget.setAccessibleName(name);
    if (widget.accessibleDescription().isEmpty())
        if (const QString text = peer.AccessibleDescription(); !text.isEmpty()) widget.setAccessibleDescription(text);
}

// The toolkit makes interfaces whether or not anybody listens; names are looked for when somebody does.
class Listener final : public QAccessible::ActivationObserver {
  public:
    bool Hears() const { return active_ || QAccessible::isActive(); }
    void accessibilityActiveChanged(bool active) override {
        active_ = active;
        if (!active) return;
        for (QWidget* widget : QApplication::allWidgets())
            if (auto* link = dynamic_cast<PeerLink*>(widget); link && link->Peer()) link->Peer()->WakeLights();
        for (QWidget* widget : QApplication::allWidgets())
            if (auto* link = dynamic_cast<PeerLink*>(widget); link && link->Peer()) NameWidget(*widget, *link->Peer());
    }

  private:
    bool active_ = false;  // also on platforms without assistive technology, which say that nobody listens
};

Listener& TheListener() {
    static Listener listener;
    return listener;
}

QAccessibleInterface* MakeInterface(const QString& className, QObject* object) {
    // The first question is for the most derived class; the toolkit's answers follow.
    if (!object || !object->isWidgetType() || className != QLatin1String(object->metaObject()->className()))
        return nullptr;
    auto* widget = static_cast<QWidget*>(object);
    auto* link = dynamic_cast<PeerLink*>(widget);
    if (!link || !link->Peer()) return nullptr;
    const WidgetPeer& peer = *link->Peer();
    if (TheListener().Hears()) NameWidget(*widget, peer);
    if (widget != peer.Widget()) return nullptr;
    if (QAccessibleInterface* rows = MakeRowsInterface(widget)) return rows;
    if (QAccessibleInterface* grid = MakeGridInterface(widget)) return grid;
    if (const auto* box = ObjectCast<TDBLookupComboBox>(&peer.Control())) return new LookupComboInterface(widget, *box);
    if (PressOf(peer.Control())) return new PressedInterface(widget, peer.Control());
    const QAccessible::Role role = RoleOf(peer.Control());
    return role == QAccessible::NoRole ? nullptr : new QAccessibleWidget(widget, role);
}

}  // namespace accessibility_detail

void InstallAccessibility() {
    QAccessible::installFactory(accessibility_detail::MakeInterface);
    QAccessible::installActivationObserver(&accessibility_detail::TheListener());
}

void RemoveAccessibility() {
    QAccessible::removeActivationObserver(&accessibility_detail::TheListener());
    QAccessible::removeFactory(accessibility_detail::MakeInterface);
}

}  // namespace vyn::qt
