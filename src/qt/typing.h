#pragma once

#include "platform/controls/control.h"

namespace vyn::qt {

// What a user does to a shown control with the keyboard, as native events to its widget: what the control makes of
// them is its own affair, and what goes wrong goes to the application. Raises EInvalidOperation when the control has no
// widget that takes keys. Main thread only.

// Types a character at a time where the caret stands, in place of what is selected.
void TypeOn(TControl& control, const AnsiString& text);
// Comes to the control, and types in place of what it holds; an empty text deletes that.
void TypeInto(TControl& control, const AnsiString& text);

}  // namespace vyn::qt
