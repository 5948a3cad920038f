#include "platform/base/run_loop.h"
#include "platform/base/timer_list.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;
using orvane::platform::MainThreadTimer;
using orvane::platform::RunLoop;
using orvane::platform::TimerList;

TEST(TimerList, SkipsMissedTicks) {
    const TimerList::Time start{};
    TimerList timers;
    int ticks = 0;
    const auto timer = timers.add(start, 10ms, [&ticks] { ++ticks; });
    EXPECT_FALSE(timers.runNextDue(start + 9ms));
    EXPECT_TRUE(timers.runNextDue(start + 35ms));
    EXPECT_FALSE(timers.runNextDue(start + 39ms));
    EXPECT_EQ(timers.nextDue(), start + 40ms);
    EXPECT_EQ(ticks, 1);
}

TEST(RunLoop, RunsTasksInTheOrderOfPostingUntilItQuits) {
    RunLoop loop;
    std::string ran;
    loop.post([&] {
        ran += 'a';
        loop.post([&] {
            ran += 'c';
            loop.quit();
        });
        loop.post([&] { ran += "never"; });
    });
    loop.post([&] { ran += 'b'; });
    EXPECT_EQ(ran, "");
    loop.run();
    EXPECT_EQ(ran, "abc");
}

TEST(RunLoop, WakesUpForTasksFromOtherThreads) {
    constexpr int tasksPerThread = 500;
    RunLoop loop;
    int ran = 0;
    const auto mainThread = std::this_thread::get_id();
    std::vector<std::thread> posters;
    for (int i = 0; i < 3; ++i)
        posters.emplace_back([&] {
            for (int task = 0; task < tasksPerThread; ++task)
                loop.post([&] {
                    ran += std::this_thread::get_id() == mainThread ? 1 : 0;
                    if (ran == 3 * tasksPerThread) loop.quit();
                });
        });
    loop.run();
    EXPECT_EQ(ran, 3 * tasksPerThread);
    for (std::thread& poster : posters)
        poster.join();
}

TEST(RunLoop, CanBeQuitFromAnotherThreadWhileItWaits) {
    RunLoop loop;
    std::thread quitter([&loop] { loop.quit(); });
    loop.run();
    quitter.join();
}

TEST(RunLoop, RepeatsTimersBetweenTasksUntilTheyEndAlsoFromWithin) {
    RunLoop loop;
    int ticks = 0;
    int tasks = 0;
    int ended = 0;
    std::function<void()> repost = [&] {
        ++tasks;
        if (ticks < 10) loop.post(repost);
    };
    loop.post(repost);
    std::unique_ptr<MainThreadTimer> once;
    once = loop.repeat(10us, [&] {
        ++ended;
        once.reset();
    });
    const auto timer = loop.repeat(100us, [&] {
        if (++ticks == 20) loop.quit();
    });
    loop.run();
    EXPECT_EQ(ended, 1);
    EXPECT_EQ(ticks, 20);
    EXPECT_GT(tasks, 0);
}

TEST(RunLoop, ContinuesIfATaskOrTimerRunsOutOfMemory) {
    RunLoop loop;
    int ticks = 0;
    loop.post([] { throw std::bad_alloc(); });
    const auto timer = loop.repeat(10us, [&] {
        if (++ticks == 3) loop.quit();
        throw std::bad_alloc();
    });
    testing::internal::CaptureStderr();
    loop.run();
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_EQ(ticks, 3);
    EXPECT_EQ(std::ranges::count(said, '\n'), 4) << said;
}

} // namespace
