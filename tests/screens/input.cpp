#include "screens/input.h"

#include "platform/controls/buttons.h"
#include "platform/controls/forms.h"
#include "platform/controls/shortcuts.h"
#include "platform/objects/class_info.h"
#include "platform/system/clipboard.h"

namespace vyn::screens {

void TypeInto(TCustomEdit& edit, const AnsiString& text) {
    edit.SelectAll();
    if (text.empty()) edit.SetSelText("");
    for (char c : text) edit.KeyPress(c);
}

void TypeOn(TCustomEdit& edit, const AnsiString& text) {
    for (char c : text) edit.ProcessKeyPress(c);
}

void PasteInto(TCustomEdit& edit, const AnsiString& text) {
    Clipboard()->SetAsText(text);
    char key = 22;
    edit.ProcessKeyPress(key);
}

void PressKey(TWinControl& control, Key key) {
    const auto press = [&](uint16_t code, char character, TShiftState shift) {
        if (!control.ProcessKeyDown(code, shift) && character) control.ProcessKeyPress(character);
    };
    switch (key) {
        case Key::Backspace:
            return press(VK_BACK, VK_BACK, {});
        case Key::Tab:
            GetParentForm(&control)->SelectNext(&control, true, true);
            return;
        case Key::Escape:
            return press(VK_ESCAPE, VK_ESCAPE, {});
        case Key::CtrlF2:
            return press(VK_F2, 0, {ssCtrl});
    }
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
