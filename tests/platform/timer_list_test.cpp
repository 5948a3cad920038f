#include "support/manual_main_thread.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace std::chrono_literals;
using orvane::platform::MainThreadTimer;
using orvane::platform::TimerList;
using orvane::test::ManualMainThread;

TEST(TimerList, RunsTimersInTheOrderTheyFallDue) {
    ManualMainThread thread;
    std::string ran;
    const auto slow = thread.repeat(30ms, [&] { ran += 's'; });
    const auto fast = thread.repeat(10ms, [&] { ran += 'f'; });
    thread.advance(9ms);
    EXPECT_EQ(ran, "");
    thread.advance(51ms);
    EXPECT_EQ(ran, "ffsfffsf");
}

TEST(TimerList, EndsWithItsHandleAlsoFromWithinItsTask) {
    ManualMainThread thread;
    int runs = 0;
    std::unique_ptr<MainThreadTimer> timer = thread.repeat(1ms, [&runs, &timer, own = std::string("kept")] {
        timer.reset();
        runs += own == "kept" ? 1 : 100;
    });
    thread.advance(1s);
    EXPECT_EQ(runs, 1);
}

TEST(TimerList, DoesNotMakeUpForMissedTicks) {
    TimerList timers;
    const TimerList::Time start;
    int runs = 0;
    const auto timer = timers.add(start, 10ms, [&runs] { ++runs; });
    EXPECT_FALSE(timers.runNextDue(start + 9ms));
    EXPECT_TRUE(timers.runNextDue(start + 35ms));
    EXPECT_FALSE(timers.runNextDue(start + 35ms));
    EXPECT_EQ(timers.nextDue(), start + 40ms);
    EXPECT_EQ(runs, 1);
}

TEST(TimerList, MayEndBeforeItsTimers) {
    auto timers = std::make_unique<TimerList>();
    const auto timer = timers->add({}, 10ms, [] {});
    timers.reset();
}

} // namespace
