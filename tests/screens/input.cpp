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

void ChooseIn(TWinControl& box, const AnsiString& text) {
    for (char c : text) box.KeyPress(c);
    uint16_t key = VK_RETURN;
    box.KeyDown(key, {});
}

void ClickOn(TWinControl& button) { ObjectCast<TButton>(&button)->Click(); }

void PressDown(TWinControl& control) {
    uint16_t key = VK_DOWN;
    control.KeyDown(key, {});
}

void Settle() {}

}  // namespace vyn::screens
