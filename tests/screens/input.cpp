#include "screens/input.h"

#include "platform/controls/buttons.h"
#include "platform/controls/shortcuts.h"
#include "platform/objects/class_info.h"

namespace vyn::screens {

void TypeInto(TCustomEdit& edit, const AnsiString& text) {
    edit.SelectAll();
    if (text.empty()) edit.SetSelText("");
    for (char c : text) edit.KeyPress(c);
}

void ClickOn(TWinControl& button) { ObjectCast<TButton>(&button)->Click(); }

void PressDown(TWinControl& control) {
    uint16_t key = VK_DOWN;
    control.KeyDown(key, {});
}

void Settle() {}

}  // namespace vyn::screens
