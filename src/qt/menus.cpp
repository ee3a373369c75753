#include "qt/menus.h"

#include <QAction>
#include <QActionGroup>
#include <QMenu>
#include <vector>

#include "platform/controls/image_lists.h"
#include "platform/objects/class_info.h"
#include "platform/objects/component_handle.h"
#include "qt/keys.h"
#include "qt/pictures.h"
#include "qt/text.h"
#include "qt/widget_peer.h"

namespace vyn::qt {

namespace menu_detail {

TMenuItem* ItemOf(int64_t number) { return ObjectCast<TMenuItem>(ComponentFromHandle(number)); }

// The pictures of the items below `item`: its own list, or the nearest above, or the menu's.
TCustomImageList* ImagesBelow(TMenuItem& item) {
    for (TMenuItem* at = &item; at; at = at->Parent())
        if (at->SubMenuImages()) return at->SubMenuImages();
    const TMenu* menu = item.GetParentMenu();
    return menu ? menu->Images() : nullptr;
}

void ApplyState(QAction& action, TMenuItem& item, TCustomImageList* images) {
    action.setText(ToQt(item.Caption()));
    action.setEnabled(item.Enabled());
    if (item.Checked() || item.RadioItem()) {
        action.setCheckable(true);
        if (item.RadioItem()) {
            // A group of its own makes the mark round; which are checked is the items' affair.
            auto* group = new QActionGroup(&action);
            group->setExclusionPolicy(QActionGroup::ExclusionPolicy::ExclusiveOptional);
            action.setActionGroup(group);
        }
        action.setChecked(item.Checked());
    }
    if (item.ShortCut() != scNone) {
        action.setShortcut(ToKeySequence(item.ShortCut()));
        // Shown only: no widget has it, so the key goes to the form.
        action.setShortcutContext(Qt::WidgetShortcut);
        action.setShortcutVisibleInContextMenu(true);
    }
    if (item.BitmapOrNull() && !item.BitmapOrNull()->Empty())
        action.setIcon(QIcon(QPixmap::fromImage(ToTransparentImage(*item.BitmapOrNull()))));
    else if (images && item.ImageIndex() >= 0 && item.ImageIndex() < images->Count())
        action.setIcon(QIcon(QPixmap::fromImage(ToQImage(images->Image(item.ImageIndex())))));
    action.setStatusTip(ToQt(TControl::GetLongHint(item.Hint)));
}

void ConnectClick(QAction& action, TMenuItem& item) {
    QObject::connect(&action, &QAction::triggered, &action, [number = item.Handle()] {
        if (TMenuItem* chosen = ItemOf(number)) Guard(chosen, [&] { chosen->Click(); });
    });
}

// A menu that is filled when it is about to show, after its item's click has had its say.
QMenu* NewSubmenu(QWidget& parent, TMenuItem& item) {
    auto* below = new QMenu(&parent);
    QObject::connect(below, &QMenu::aboutToShow, below, [below, number = item.Handle()] {
        const QPointer<QMenu> alive(below);
        if (TMenuItem* opened = ItemOf(number)) Guard(opened, [&] { opened->Click(); });
        TMenuItem* opened = ItemOf(number);
        if (opened && alive) FillMenu(*below, *opened);
    });
    return below;
}

void AddItem(QMenu& menu, TMenuItem& item, TCustomImageList* images) {
    if (item.IsLine()) {
        menu.addSeparator();
        return;
    }
    const int64_t number = item.Handle();
    QAction* action = item.Count() > 0 ? menu.addMenu(NewSubmenu(menu, item)) : menu.addAction(QString());
    if (item.Count() == 0) ConnectClick(*action, item);
    ApplyState(*action, item, images);
    QObject::connect(action, &QAction::hovered, action, [number] {
        if (TMenuItem* at = ItemOf(number)) Guard(at, [&] { Application()->SetHint(TControl::GetLongHint(at->Hint)); });
    });
    if (item.Default()) {
        QFont font = menu.font();
        font.setBold(true);
        action->setFont(font);
        menu.setDefaultAction(action);
    }
}

}  // namespace menu_detail

void FillMenu(QMenu& menu, TMenuItem& item) {
    for (QMenu* old : menu.findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly)) old->deleteLater();
    menu.clear();
    TCustomImageList* images = menu_detail::ImagesBelow(item);
    for (int i = 0; i < item.Count(); ++i)
        if (item.Items(i)->Visible()) menu_detail::AddItem(menu, *item.Items(i), images);
}

void ShowPopupMenu(TPopupMenu& menu, TPoint at) {
    const QPointer<QMenu> native(new QMenu);
    FillMenu(*native, *menu.Items());
    if (!native->isEmpty()) {
        QPoint place(at.x, at.y);
        if (menu.Alignment == paRight) place.rx() -= native->sizeHint().width();
        if (menu.Alignment == paCenter) place.rx() -= native->sizeHint().width() / 2;
        native->exec(place);
    }
    if (native) native->deleteLater();
}

namespace menu_detail {

std::vector<TMenuItem*> BarItems(TMainMenu* menu) {
    std::vector<TMenuItem*> items;
    for (int i = 0; menu && i < menu->Items()->Count(); ++i) {
        TMenuItem* item = menu->Items()->Items(i);
        if (item->Visible() && !item->IsLine()) items.push_back(item);
    }
    return items;
}

// The bar shows these items already: only their state may differ.
bool HasItems(const QMenuBar& bar, const std::vector<TMenuItem*>& items) {
    const QList<QAction*> actions = bar.actions();
    if (actions.size() != static_cast<qsizetype>(items.size())) return false;
    for (size_t i = 0; i < items.size(); ++i) {
        const QAction* action = actions[static_cast<qsizetype>(i)];
        if (action->data().toLongLong() != items[i]->Handle()) return false;
        if ((action->menu() != nullptr) != (items[i]->Count() > 0)) return false;
    }
    return true;
}

}  // namespace menu_detail

void FillMenuBar(QMenuBar& bar, TMainMenu* menu) {
    const std::vector<TMenuItem*> items = menu_detail::BarItems(menu);
    if (menu_detail::HasItems(bar, items)) {
        for (size_t i = 0; i < items.size(); ++i)
            menu_detail::ApplyState(*bar.actions()[static_cast<qsizetype>(i)], *items[i], nullptr);
        return;
    }
    const QList<QMenu*> before = bar.findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly);
    bar.clear();
    // A menu may be open, or about to be: it was its item's click that changed the menu.
    for (QMenu* old : before) {
        old->close();
        old->deleteLater();
    }
    for (TMenuItem* item : items) {
        QAction* action =
            item->Count() > 0 ? bar.addMenu(menu_detail::NewSubmenu(bar, *item)) : bar.addAction(QString());
        if (item->Count() == 0) menu_detail::ConnectClick(*action, *item);
        action->setData(static_cast<qlonglong>(item->Handle()));
        menu_detail::ApplyState(*action, *item, nullptr);
    }
}

}  // namespace vyn::qt
