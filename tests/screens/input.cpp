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
    uint16_t code = key == Key::Backspace ? VK_BACK : key == Key::Tab ? VK_TAB : VK_ESCAPE;
    char character = static_cast<char>(code);
    if (key == Key::Tab)
        GetParentForm(&control)->SelectNext(&control, true, true);
    else if (!control.ProcessKeyDown(code, {}))
        control.ProcessKeyPress(character);
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
