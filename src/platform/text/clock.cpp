#include "platform/text/clock.h"

#include <sys/time.h>

#include <ctime>
#include <utility>

#include "platform/text/date_format.h"

namespace vyn {

namespace clock_detail {

std::function<double()>& TestClock() {
    static std::function<double()> clock;
    return clock;
}

}  // namespace clock_detail

double CurrentDays() {
    if (const auto& clock = clock_detail::TestClock()) return clock();
    timeval now{};
    gettimeofday(&now, nullptr);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    constexpr int kFirstYearOfTm = 1900;
    constexpr int kLastSecond = 59;  // a leap second is shown as the one before it
    const int second = local.tm_sec > kLastSecond ? kLastSecond : local.tm_sec;
    return EncodeDate(local.tm_year + kFirstYearOfTm, local.tm_mon + 1, local.tm_mday) +
           EncodeTime(local.tm_hour, local.tm_min, second, static_cast<int>(now.tv_usec / 1000));
}

void SetClockForTests(std::function<double()> clock) { clock_detail::TestClock() = std::move(clock); }

}  // namespace vyn
