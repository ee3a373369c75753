#pragma once

namespace vyn::qt {

// Names for assistive technology. Nothing is prepared until somebody listens: then a widget of ours gets its control's
// name (its caption, or that of the label that leads to it) and its hint as the description; labels and other
// controls that are drawn by us say what they are.
void InstallAccessibility();
void RemoveAccessibility();

}  // namespace vyn::qt
