#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

namespace vyn::odbc_provider {

// Watches over calls that may not come back: one that takes longer than it may is cut short from a thread of this
// object's own, which begins with the first call that has an end.
class Watchdog {
  public:
    // `cut` is called from that thread, at most once a call.
    explicit Watchdog(std::function<void()> cut) : cut_(std::move(cut)) {}
    ~Watchdog();
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    // A call begins, or shows that it goes on; 0: it may take for ever.
    void Allow(std::chrono::milliseconds time);
    // It came back.
    void Done();

    // A call, while it lives.
    class Call {
      public:
        Call(Watchdog& dog, std::chrono::milliseconds time) : dog_(dog) { dog_.Allow(time); }
        ~Call() { dog_.Done(); }
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;

      private:
        Watchdog& dog_;
    };

  private:
    using Clock = std::chrono::steady_clock;
    void Run();
    std::function<void()> cut_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::optional<Clock::time_point> end_;
    Clock::time_point until_ = Clock::time_point::max();  // the thread waits
    bool ending_ = false;
    std::thread thread_;
};

}  // namespace vyn::odbc_provider
