#include "platform/system/ticks.h"

#include <gtest/gtest.h>

#include "platform/system/application.h"

using namespace vyn;

TEST(Ticks, WrapAfterThirtyTwoBits) {
    ManualTickClock clock(0xFFFFFFFFull);
    EXPECT_EQ(TickCount(), 0xFFFFFFFFu);
    const uint32_t before = TickCount();
    clock.Advance(5);
    EXPECT_EQ(TickCount(), 4u);
    EXPECT_EQ(TickCount() - before, 5u);
}

TEST(Ticks, ATimerFiresOnceHoweverManyPeriodsWentBy) {
    ManualTickClock clock;
    int fired = 0;
    const TimerId timer = StartTimer(100, [&] { ++fired; });
    Application()->ProcessMessages();
    EXPECT_EQ(fired, 0);
    clock.Advance(99);
    Application()->ProcessMessages();
    EXPECT_EQ(fired, 0);
    clock.Advance(1);
    Application()->ProcessMessages();
    EXPECT_EQ(fired, 1);
    clock.Advance(1000);
    Application()->ProcessMessages();
    EXPECT_EQ(fired, 2);
    StopTimer(timer);
    clock.Advance(1000);
    Application()->ProcessMessages();
    EXPECT_EQ(fired, 2);
}

TEST(Ticks, ATimerMayStopItselfAndAnother) {
    ManualTickClock clock;
    int first = 0, second = 0;
    TimerId a = 0, b = 0;
    a = StartTimer(10, [&] {
        ++first;
        StopTimer(a);
        StopTimer(b);
    });
    b = StartTimer(10, [&] { ++second; });
    clock.Advance(10);
    Application()->ProcessMessages();
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 0);
}

TEST(Ticks, AThrowingTimerGoesToTheApplicationAndRunsOn) {
    ManualTickClock clock;
    int errors = 0;
    Application()->OnException = [&](TObject*, const Exception&) { ++errors; };
    const TimerId timer = StartTimer(10, [] { throw EConvertError("tick"); });
    clock.Advance(10);
    Application()->ProcessMessages();
    clock.Advance(10);
    Application()->ProcessMessages();
    StopTimer(timer);
    Application()->OnException.Clear();
    EXPECT_EQ(errors, 2);
}
