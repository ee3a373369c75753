#include "platform/controls/control_classes.h"

#include "platform/controls/bit_buttons.h"
#include "platform/controls/data_modules.h"
#include "platform/controls/forms.h"
#include "platform/controls/groups.h"
#include "platform/controls/image_lists.h"
#include "platform/controls/images.h"
#include "platform/controls/labels.h"
#include "platform/controls/lists.h"
#include "platform/controls/mask_edits.h"
#include "platform/controls/menus.h"
#include "platform/controls/pages.h"
#include "platform/controls/panels.h"
#include "platform/controls/status_bars.h"
#include "platform/controls/timers.h"
#include "platform/controls/tool_bars.h"
#include "platform/controls/tree_views.h"
#include "platform/objects/class_table.h"

namespace vyn {

void RegisterControlClasses() {
    for (TClass each : {&TForm::StaticClass(),       &TDataModule::StaticClass(),  &TMainMenu::StaticClass(),
                        &TPopupMenu::StaticClass(),  &TMenuItem::StaticClass(),    &TLabel::StaticClass(),
                        &TEdit::StaticClass(),       &TMemo::StaticClass(),        &TButton::StaticClass(),
                        &TCheckBox::StaticClass(),   &TRadioButton::StaticClass(), &TListBox::StaticClass(),
                        &TComboBox::StaticClass(),   &TGroupBox::StaticClass(),    &TRadioGroup::StaticClass(),
                        &TPanel::StaticClass(),      &TBitBtn::StaticClass(),      &TSpeedButton::StaticClass(),
                        &TImage::StaticClass(),      &TBevel::StaticClass(),       &TScrollBox::StaticClass(),
                        &TSplitter::StaticClass(),   &TStaticText::StaticClass(),  &TPageControl::StaticClass(),
                        &TTabSheet::StaticClass(),   &TImageList::StaticClass(),   &TToolBar::StaticClass(),
                        &TToolButton::StaticClass(), &TStatusBar::StaticClass(),   &TTreeView::StaticClass(),
                        &TTimer::StaticClass(),      &TMaskEdit::StaticClass()})
        AddLinkedClass(each);
}

}  // namespace vyn
