#pragma once

#include <QtCore/qnamespace.h>

#include <cstdint>

#include "platform/controls/control_types.h"

class QKeyEvent;
class QKeySequence;

namespace vyn::qt {

// Native keys and buttons as the controls know them (shortcuts.h). 0 for a key without a number.
uint16_t ToVirtualKey(const QKeyEvent& event);
TShiftState ToShiftState(Qt::KeyboardModifiers modifiers, Qt::MouseButtons buttons = Qt::NoButton);
TMouseButton ToMouseButton(Qt::MouseButton button);
// Empty for no short cut.
QKeySequence ToKeySequence(TShortCut shortCut);

}  // namespace vyn::qt
