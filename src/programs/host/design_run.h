#pragma once

#include "controls/Uvyneditbox.h"
#include "programs/host/custom_form.h"

namespace vyn {

// The design run: while an application's DesignTime is on, its screens work as ever, and Ctrl+F2 on a lookup box opens
// the dialog that sets the box up. What was changed there is stored with the box's node in the application object; the
// application file is another's affair. Main thread only.

// The key of the design run in a form; true when it was one, and a box had the keyboard.
bool DesignKey(TCustomFRM& form, uint16_t key, TShiftState shift);

// Shows the dialog for a box of the form, and stores what was changed.
void DesignEditBox(TCustomFRM& form, TVynEditBox& box);

// Stores the settings of a box with its form's node, and nothing else of what the form has become since it was opened.
// Raises Exception when the box is not one of the form's own by name.
void StoreEditBox(const TCustomFRM& form, const TVynEditBox& box);

}  // namespace vyn
