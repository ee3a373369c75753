#pragma once

#include <atomic>
#include <cstdint>
#include <functional>

#include "platform/system/messages.h"

namespace vyn {

// The main thread's queue: posted messages and calls from workers, in the order in which they came. The room's own;
// others use messages.h, threads.h and application.h.
namespace main_queue {

// Queues a call for the main thread. Any thread.
void PostCall(std::function<void()> call);
// The same, and says by `done` that the call is queued: whoever finds it set finds the call there too.
void PostLastCall(std::function<void()> call, std::atomic<bool>& done);
// Queues a call that runs even while the main thread waits for a worker (synchronised calls, SendMessage).
void PostUrgentCall(std::function<void()> call);
// Queues a window message.
void PostWindowMessage(HWND handle, uint32_t message, intptr_t wParam, intptr_t lParam);

// What the queue's next entry was.
enum class Taken { Nothing, Message, Call };
// Takes the oldest entry and runs it. Main thread.
Taken RunNext();
// Runs the urgent calls only; true when there was one. Main thread.
bool RunUrgentCalls();
// How many entries wait; what is posted meanwhile does not count.
size_t Count();
// Waits until there is an entry, or for so many milliseconds (-1: for ever). Main thread.
void Wait(int64_t milliseconds);
// The same for urgent calls, or until `done` says true after a notice.
void WaitUrgent(const std::function<bool()>& done);
// Makes waiters look again.
void Notify();

}  // namespace main_queue
}  // namespace vyn
