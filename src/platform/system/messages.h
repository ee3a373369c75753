#pragma once

#include <cstdint>
#include <functional>

namespace vyn {

// Window messages: how parts of the system that do not know each other speak.
//
// A window handle is a number that stands for a window procedure; 0 stands for none, and numbers are never given
// twice in a process, so a message to a window that is gone reaches nobody. Windows are made and freed on the main
// thread, and every window procedure runs there.
using HWND = uint32_t;

struct TMessage {
    uint32_t Msg = 0;
    intptr_t WParam = 0;
    intptr_t LParam = 0;  // wide enough for a pointer
    intptr_t Result = 0;
};

using WindowProcedure = std::function<void(TMessage&)>;

// The messages that this system itself sends, with their customary numbers. Own messages start at WM_USER.
constexpr uint32_t WM_NULL = 0x0000;
constexpr uint32_t WM_CLOSE = 0x0010;
constexpr uint32_t WM_QUIT = 0x0012;
constexpr uint32_t WM_TIMER = 0x0113;
constexpr uint32_t WM_USER = 0x0400;

HWND AllocateHWnd(WindowProcedure procedure);
void DeallocateHWnd(HWND handle);
bool IsWindow(HWND handle);

// Calls the window's procedure at once and gives its Result; 0 for a window that is gone. From a worker thread it
// blocks until the main thread has answered. What the procedure throws reaches the caller, on either thread.
intptr_t SendMessage(HWND handle, uint32_t message, intptr_t wParam, intptr_t lParam);

// Queues the message for the next ProcessMessages; false for a window that is gone. Any thread.
bool PostMessage(HWND handle, uint32_t message, intptr_t wParam, intptr_t lParam);

// A window for as long as the object lives.
class WindowHandle {
  public:
    explicit WindowHandle(WindowProcedure procedure) : handle_(AllocateHWnd(std::move(procedure))) {}
    ~WindowHandle() { DeallocateHWnd(handle_); }
    WindowHandle(const WindowHandle&) = delete;
    WindowHandle& operator=(const WindowHandle&) = delete;

    HWND Handle() const { return handle_; }

  private:
    HWND handle_;
};

}  // namespace vyn
