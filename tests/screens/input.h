#pragma once

#include "platform/controls/edits.h"
#include "platform/controls/win_control.h"

// What a user does to a control. The same stories are told twice: to the controls themselves (input.cpp), and with
// native events to their windows (windows/input.cpp).
namespace vyn::screens {

// Types in place of what the edit holds, a character at a time; an empty text deletes it.
void TypeInto(TCustomEdit& edit, const AnsiString& text);
// Types on where the caret stands, in place of what is selected.
void TypeOn(TCustomEdit& edit, const AnsiString& text);
// Puts a text there from the clipboard.
void PasteInto(TCustomEdit& edit, const AnsiString& text);
enum class Key { Backspace, Tab, Escape, CtrlF2 };
void PressKey(TWinControl& control, Key key);
// Types the beginning of an entry of a box with a list, and takes it.
void ChooseIn(TWinControl& box, const AnsiString& text);
void ClickOn(TWinControl& button);
void PressDown(TWinControl& control);
// Lets what waits happen.
void Settle();

}  // namespace vyn::screens
