#include "platform/system/ticks.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <vector>

#include "platform/system/application.h"
#include "platform/system/main_loop.h"
#include "platform/system/tick_wait.h"

namespace vyn {

namespace tick_timers {

struct Timer {
    TimerId id;
    uint32_t period;
    uint64_t due;
    std::function<void()> fire;
};

std::atomic<TickClock*> theClock{nullptr};

std::vector<Timer>& Timers() {
    static std::vector<Timer>* timers = new std::vector<Timer>;
    return *timers;
}

TimerId lastTimer = 0;

uint64_t Now() {
    if (const TickClock* clock = theClock.load()) return clock->Milliseconds();
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

void SchedulePort() {
    MainLoopPort* port = GetMainLoopPort();
    if (!port) return;
    const int64_t left = UntilNext();
    port->ScheduleTimer(left < 0 ? MainLoopPort::NoTimer : static_cast<uint32_t>(left));
}

bool RunDue() {
    const uint64_t now = Now();
    std::vector<TimerId> due;
    for (const Timer& timer : Timers())
        if (timer.due <= now) due.push_back(timer.id);
    for (const TimerId id : due) {
        const auto found = std::find_if(Timers().begin(), Timers().end(), [id](const Timer& t) { return t.id == id; });
        if (found == Timers().end()) continue;  // an earlier one stopped it
        found->due = now + found->period;
        const std::function<void()> fire = found->fire;  // it may stop itself
        try {
            fire();
        } catch (...) {
            Application()->HandleException(nullptr);
        }
    }
    SchedulePort();
    return !due.empty();
}

int64_t UntilNext() {
    if (Timers().empty()) return -1;
    uint64_t first = UINT64_MAX;
    for (const Timer& timer : Timers()) first = std::min(first, timer.due);
    const uint64_t now = Now();
    return first <= now ? 0 : static_cast<int64_t>(first - now);
}

bool ClockIsReplaced() { return theClock.load() != nullptr; }

// Where workers wait; never destroyed, as a worker may still wait while the process ends.
struct Waits {
    std::mutex mutex;
    std::condition_variable changed;
};
Waits& TheWaits() {
    static Waits* waits = new Waits;
    return *waits;
}

}  // namespace tick_timers

void TickWait::Until(uint32_t tick) {
    tick_timers::Waits& waits = tick_timers::TheWaits();
    std::unique_lock<std::mutex> lock(waits.mutex);
    for (;;) {
        const auto left = static_cast<int32_t>(tick - TickCount());
        if (woken_ || left <= 0) break;
        if (tick_timers::ClockIsReplaced())
            waits.changed.wait(lock);
        else
            waits.changed.wait_for(lock, std::chrono::milliseconds(left));
    }
    woken_ = false;
}

void TickWait::Wake() {
    tick_timers::Waits& waits = tick_timers::TheWaits();
    {
        const std::lock_guard<std::mutex> lock(waits.mutex);
        woken_ = true;
    }
    waits.changed.notify_all();
}

void TickClockMoved() {
    {
        // Whoever has looked at the clock and not yet begun to wait is waited for.
        const std::lock_guard<std::mutex> lock(tick_timers::TheWaits().mutex);
    }
    tick_timers::TheWaits().changed.notify_all();
}

uint32_t TickCount() { return static_cast<uint32_t>(tick_timers::Now()); }

void SetTickClock(TickClock* clock) {
    tick_timers::theClock.store(clock);
    TickClockMoved();
}

TimerId StartTimer(uint32_t milliseconds, std::function<void()> fire) {
    const TimerId id = ++tick_timers::lastTimer;
    tick_timers::Timers().push_back({id, milliseconds, tick_timers::Now() + milliseconds, std::move(fire)});
    tick_timers::SchedulePort();
    return id;
}

void StopTimer(TimerId timer) {
    if (std::erase_if(tick_timers::Timers(), [timer](const tick_timers::Timer& t) { return t.id == timer; }) > 0)
        tick_timers::SchedulePort();
}

}  // namespace vyn
