#pragma once

#include <QMenuBar>
#include <QPointer>

#include "platform/controls/menus.h"

class QMenu;

namespace vyn::qt {

// Menus as the desktop shows them. A native menu is filled when it is about to show, so that it has the state of that
// moment; the item that it belongs to is clicked before, so that the program may set that state. Short cuts are shown
// beside their items and answered by the form, which also asks its OnShortCut.

// Fills a native menu with the items below `item`.
void FillMenu(QMenu& menu, TMenuItem& item);
// Shows a popup menu and returns when it has gone.
void ShowPopupMenu(TPopupMenu& menu, TPoint at);
// Brings a menu bar into the state of a main menu (null: empties it).
void FillMenuBar(QMenuBar& bar, TMainMenu* menu);

}  // namespace vyn::qt
