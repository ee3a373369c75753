#pragma once

#include "platform/system/message_dialogs.h"

namespace vyn::qt {

// A message box of the desktop's, over the active window. Closing it answers as its cancel button does, or with the
// answer that changes least.
TModalResult ShowMessageBox(const MessageDialogRequest& request);

}  // namespace vyn::qt
