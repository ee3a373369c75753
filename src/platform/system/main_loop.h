#pragma once

#include <cstdint>

namespace vyn {

// What a toolkit implements so that its event loop and the application's queue are one.
//
// The toolkit registers its port before the first window is shown and takes it back (null) before it goes; the port
// is the toolkit's. All but Wake are called on the main thread. Without a port the application loops by itself.
class MainLoopPort {
  public:
    static constexpr uint32_t NoTimer = UINT32_MAX;

    virtual ~MainLoopPort() = default;

    // Something was queued: the loop is to call Application()->DispatchPending() soon. Any thread.
    virtual void Wake() = 0;
    // The toolkit's loop, until Quit.
    virtual void Run() = 0;
    virtual void Quit() = 0;
    // Handles the native events that wait, without waiting for more.
    virtual void ProcessEvents() = 0;
    // Waits for a native event, a Wake or the scheduled time, and handles what came.
    virtual void WaitForEvents() = 0;
    // Calls Application()->DispatchPending() after so many milliseconds; replaces what was scheduled before.
    // NoTimer: nothing is to be scheduled.
    virtual void ScheduleTimer(uint32_t milliseconds) = 0;
};

void SetMainLoopPort(MainLoopPort* port);
MainLoopPort* GetMainLoopPort();

}  // namespace vyn
