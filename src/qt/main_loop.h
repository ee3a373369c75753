#pragma once

#include <memory>

#include "platform/system/main_loop.h"

namespace vyn::qt {

// The toolkit's loop and the application's queue made one. The queue is emptied by a posted event and due timers by
// one native timer, so both also run inside loops of the toolkit's own (menus, message boxes). Needs the toolkit's
// application object; must go before it.
std::unique_ptr<MainLoopPort> NewMainLoopPort();

}  // namespace vyn::qt
