#include "providers/odbc/watchdog.h"

namespace vyn::odbc_provider {

Watchdog::~Watchdog() {
    if (!thread_.joinable()) return;
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
    }
    changed_.notify_one();
    thread_.join();
}

void Watchdog::Allow(std::chrono::milliseconds time) {
    if (time.count() <= 0) return;
    bool wake = false;
    {
        const std::lock_guard lock(mutex_);
        end_ = Clock::now() + time;
        wake = *end_ < until_;
    }
    if (!thread_.joinable()) thread_ = std::thread([this] { Run(); });
    if (wake) changed_.notify_one();
}

void Watchdog::Done() {
    const std::lock_guard lock(mutex_);
    end_.reset();
}

void Watchdog::Run() {
    std::unique_lock lock(mutex_);
    while (!ending_) {
        const Clock::time_point now = Clock::now();
        if (end_ && now >= *end_) {
            end_.reset();
            cut_();
        }
        // The end of a call leaves this thread waiting for the call's time, which the next one mostly lengthens: so
        // most calls wake nobody.
        if (end_) until_ = *end_;
        if (until_ <= now) until_ = Clock::time_point::max();
        if (until_ == Clock::time_point::max())
            changed_.wait(lock);
        else
            changed_.wait_until(lock, until_);
    }
}

}  // namespace vyn::odbc_provider
