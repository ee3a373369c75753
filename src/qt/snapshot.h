#pragma once

#include <string>

#include "platform/controls/forms.h"

namespace vyn::qt {

// Pictures of forms, for people who look and for tests that compare: the form is shown, its events are handled until
// it is painted, and its window's inside (with the menu bar) is drawn into a PNG. The caret does not blink and nothing
// moves meanwhile. Without a display the same form gives the same picture everywhere where the fonts are the same.
//
// width and height are of the client area; 0 keeps the form's. With a part, a control of the form with a widget, only
// that is drawn. A form that was hidden is hidden again. Raises EInvalidOperation when there is no toolkit or the part
// is not shown, EFCreateError when the file cannot be written.
std::string GrabForm(TCustomForm& form, int width = 0, int height = 0, const TControl* part = nullptr);
void GrabFormToFile(TCustomForm& form, const AnsiString& fileName, int width = 0, int height = 0,
                    const TControl* part = nullptr);

}  // namespace vyn::qt
