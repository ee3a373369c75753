#pragma once

#include <functional>

namespace vyn {

// The system's threads that workers run on. One that has done its work waits a while for more: making a thread costs
// more than all else that a short work needs. The room's own; others use threads.h.
namespace workers {

// Runs a work on a thread of its own; what it throws ends the process. Raises std::system_error when the system has no
// thread left. Any thread.
void Run(std::function<void()> work);

}  // namespace workers
}  // namespace vyn
