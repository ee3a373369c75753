#pragma once

#include <atomic>
#include <cstdint>
#include <functional>

namespace vyn {

// Milliseconds since some moment before the program's start, as a 32-bit number that begins again at 0 after 49.7
// days: compare differences, never values. Any thread.
uint32_t TickCount();

// Where ticks come from. A test that needs to move time installs its own clock; null puts the machine's back.
// The clock is the caller's. Install it while no worker runs.
class TickClock {
  public:
    virtual ~TickClock() = default;
    // Milliseconds; never goes back.
    virtual uint64_t Milliseconds() const = 0;
};
void SetTickClock(TickClock* clock);
// A clock of one's own says that it was moved: workers that wait for a moment (tick_wait.h) look again. Any thread.
void TickClockMoved();

// A clock that stands until it is moved; it is the system's clock for as long as it lives.
class ManualTickClock final : public TickClock {
  public:
    explicit ManualTickClock(uint64_t milliseconds = 0) : now_(milliseconds) { SetTickClock(this); }
    ~ManualTickClock() override { SetTickClock(nullptr); }
    ManualTickClock(const ManualTickClock&) = delete;
    ManualTickClock& operator=(const ManualTickClock&) = delete;

    uint64_t Milliseconds() const override { return now_; }
    void Advance(uint64_t milliseconds) {
        now_ += milliseconds;
        TickClockMoved();
    }

  private:
    std::atomic<uint64_t> now_;
};

// Timers of the main thread. A timer that is due fires from ProcessMessages, once however many periods went by, and
// is due again a whole period after that. What its function throws goes to Application()->HandleException.
using TimerId = uint32_t;  // 0 is no timer; numbers are not given twice
TimerId StartTimer(uint32_t milliseconds, std::function<void()> fire);
void StopTimer(TimerId timer);

namespace tick_timers {

// Fires what is due; true when something did.
bool RunDue();
// Milliseconds until the next timer is due (0: now), or -1 when there is none.
int64_t UntilNext();
// Another clock than the machine's is in use.
bool ClockIsReplaced();

}  // namespace tick_timers
}  // namespace vyn
