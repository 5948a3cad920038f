#include "audio/insert_workers.h"
#include "audio/mixer_realtime_state.h"
#include "platform/base/abandoned.h"
#include "platform/base/stop_patience.h"
#include "support/allocation_guard.h"
#include "support/failing_allocation.h"
#include "support/mixer_harness.h"
#include "support/scripted_unit.h"
#include "support/wait_for.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <iterator>
#include <memory>
#include <new>
#include <thread>

namespace {

using namespace orvane;
using audio::InsertWorkers;

constexpr std::size_t frames = 64;

/// A clock that goes on by itself by so many ticks a look, and by whatever is added to it.
std::atomic<std::uint64_t> ticks;
std::atomic<std::uint64_t> ticksPerLook;
constexpr platform::HostClock scriptedClock{
    []() noexcept { return ticks += ticksPerLook; }, {.numer = 1, .denom = 1}};

/// Two strips with an effect each that doubles its input and first does something else.
struct TwoStrips {
    explicit TwoStrips(
        std::size_t workerCount = 1, platform::HostClock clock = platform::HostClock::system(),
        const InsertWorkers::Limits& given = limits
    ) {
        state.insertWorkers = test::startWorkers(workerCount, 2, clock, given);
    }

    audio::InsertTable makeTable() {
        audio::InsertTable table;
        for (std::size_t strip = 0; strip < 2; ++strip) {
            auto effect = [this, strip, inner = units[strip].renderBlock()](auto&&... call) {
                before[strip]();
                return inner(call...);
            };
            auto context = std::make_shared<plugins::InsertRenderContext>(effect, 1, "Insert", log);
            contexts[strip] = context;
            table.pluginContexts.push_back({context});
        }
        return table;
    }

    /// What a block of ones becomes on each strip.
    std::pair<double, double> run() {
        for (std::size_t strip = 0; strip < 2; ++strip)
            std::ranges::fill(blocks[strip], 1.0);
        constexpr bool routed[] = {true, true};
        const auto hold = state.inserts.hold();
        const test::AllocationGuard guard;
        state.insertWorkers->run(*hold, blocks, routed, 1.0);
        return {blocks[0].back(), blocks[1].back()};
    }

    static constexpr InsertWorkers::Limits limits{
        .sharedFrom = -1.0, .unsharedBelow = -1.0, .waitedFor = 0.0};
    platform::SystemLog log{[](const platform::LogLine&) {}};
    test::ScriptedUnit units[2] = {
        test::ScriptedUnit({test::UnitAct::doubles}), test::ScriptedUnit({test::UnitAct::doubles})};
    std::function<void()> before[2] = {[] {}, [] {}};
    std::weak_ptr<plugins::InsertRenderContext> contexts[2];
    dsp::ChannelBlocks<double> blocks{2, frames};
    audio::MixerRealtimeState state{2};
};

TEST(InsertWorkers, LeaveAStripDryWhoseEffectIsLateAndKeepItUntilItReturns) {
    TwoStrips strips;
    std::atomic<bool> isEntered = false;
    std::atomic<bool> isReleased = false;
    strips.state.updatePlugins(strips.makeTable());
    EXPECT_EQ(strips.run(), std::pair(2.0, 2.0));

    // The I/O thread waits at the first strip until the worker, which begins at the second, is held up there.
    strips.before[0] = [&] {
        while (!isEntered)
            std::this_thread::yield();
    };
    strips.before[1] = [&] {
        isEntered = true;
        while (!isReleased)
            std::this_thread::yield();
    };
    EXPECT_EQ(strips.run(), std::pair(2.0, 1.0));
    EXPECT_EQ(strips.run(), std::pair(2.0, 1.0));
    EXPECT_EQ(strips.units[1].calls, 1);

    strips.state.updatePlugins({});
    EXPECT_FALSE(strips.state.freeRetired());
    EXPECT_FALSE(strips.contexts[1].expired());
    isReleased = true;
    EXPECT_TRUE(test::waitFor([&] { return strips.state.freeRetired(); }));
    EXPECT_TRUE(strips.contexts[1].expired());

    strips.state.updatePlugins(strips.makeTable());
    strips.before[0] = strips.before[1] = [] {};
    EXPECT_TRUE(test::waitFor([&] { return strips.run() == std::pair(2.0, 2.0); }));
}

TEST(InsertWorkers, TakePartFromAHighLoadUntilALowOne) {
    constexpr std::uint64_t blockTicks = 1000000000;
    ticks = ticksPerLook = 0;
    TwoStrips strips(1, scriptedClock, {.waitedFor = 1e9});
    strips.state.updatePlugins(strips.makeTable());
    // The most that a block has lately taken sinks slowly from one to the next.
    const auto runBlocks = [&](int count, double load) {
        strips.before[0] = [load] { ticks += static_cast<std::uint64_t>(load * blockTicks); };
        strips.before[1] = [] {};
        for (int block = 0; block < count; ++block)
            strips.run();
    };
    const auto doTakePart = [&](bool isExpected) {
        std::atomic<bool> hasTaken = false;
        strips.before[0] = [&, ioThread = std::this_thread::get_id()] {
            if (isExpected && std::this_thread::get_id() == ioThread)
                test::waitFor([&] { return hasTaken.load(); });
        };
        strips.before[1] = [&, ioThread = std::this_thread::get_id()] {
            if (std::this_thread::get_id() != ioThread) hasTaken = true;
        };
        for (int block = 0; block < (isExpected ? 1 : 100); ++block)
            strips.run();
        return hasTaken.load();
    };
    EXPECT_FALSE(doTakePart(false));
    runBlocks(1, 0.58);
    EXPECT_FALSE(doTakePart(false));
    runBlocks(1, 0.62);
    EXPECT_TRUE(doTakePart(true));
    runBlocks(800, 0.0);
    EXPECT_TRUE(doTakePart(true)) << "about 0.42";
    runBlocks(200, 0.0);
    EXPECT_FALSE(doTakePart(false)) << "about 0.38";
    runBlocks(1, 0.58);
    EXPECT_FALSE(doTakePart(false));
}

TEST(InsertWorkers, AreWaitedForUntilThreeQuartersOfABlock) {
    constexpr std::uint64_t blockTicks = 1000000000;
    InsertWorkers::Limits always;
    always.sharedFrom = always.unsharedBelow = -1.0;
    TwoStrips strips(1, scriptedClock, always);
    strips.state.updatePlugins(strips.makeTable());
    strips.run();
    std::atomic<bool> isEntered = false;
    std::atomic<bool> isReleased = false;
    strips.before[0] = [&] { test::waitFor([&] { return isEntered.load(); }); };
    strips.before[1] = [&] {
        isEntered = true;
        test::waitFor([&] { return isReleased.load(); });
    };
    ticksPerLook = blockTicks / 1000;
    const std::uint64_t begun = ticks;
    EXPECT_EQ(strips.run(), std::pair(2.0, 1.0));
    EXPECT_NEAR(static_cast<double>(ticks - begun) / blockTicks, 0.75, 0.01);
    isReleased = true;
}

TEST(InsertWorkers, TakeNothingWithoutTheirPriority) {
    static std::atomic<int> asked;
    asked = 0;
    TwoStrips strips;
    strips.state.insertWorkers = std::make_unique<InsertWorkers>(
        2, 2, platform::HostClock::system(), TwoStrips::limits,
        []() noexcept {
            ++asked;
            return 0;
        }
    );
    std::atomic<int> taken = 0;
    for (auto& before : strips.before)
        before = [&, ioThread = std::this_thread::get_id()] {
            taken += std::this_thread::get_id() == ioThread ? 0 : 1;
        };
    strips.state.updatePlugins(strips.makeTable());
    EXPECT_TRUE(test::waitFor([] { return asked == 2; }));
    for (int block = 0; block < 1000; ++block)
        ASSERT_EQ(strips.run(), std::pair(2.0, 2.0)) << block;
    EXPECT_EQ(taken, 0);
    EXPECT_EQ(strips.state.insertWorkers->helperCount(), 0U);
}

TEST(InsertWorkers, AreFewerIfMemoryRunsOut) {
    std::size_t fewer = 0;
    for (std::size_t nth = 1;; ++nth) {
        const test::FailingAllocation failing(nth);
        try {
            const InsertWorkers workers(3, 2, platform::HostClock::system(), TwoStrips::limits);
            if (!failing.hasHappened()) break;
            ++fewer;
        } catch (const std::bad_alloc&) {
        }
    }
    EXPECT_EQ(fewer, 2U) << "each but the first can be done without";
}

std::ptrdiff_t threadCount() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

TEST(InsertWorkers, AreWaitedForBeforeTheirEffectsAreDestroyed) {
    auto strips = std::make_unique<TwoStrips>(2);
    std::atomic<int> entered = 0;
    std::atomic<bool> isHeldUp = false;
    std::atomic<bool> isReleased = false;
    std::atomic<bool> isKept = false;
    strips->state.updatePlugins(strips->makeTable());
    strips->run();
    // Of the two threads that are at the strips at once, a worker is held up.
    for (std::size_t strip = 0; strip < 2; ++strip)
        strips->before[strip] = [&, effect = &strips->contexts[strip],
                                 ioThread = std::this_thread::get_id()] {
            ++entered;
            while (entered < 2)
                std::this_thread::yield();
            if (std::this_thread::get_id() == ioThread || isHeldUp.exchange(true)) return;
            while (!isReleased)
                std::this_thread::yield();
            isKept = !effect->expired();
        };
    strips->run();

    // Once the idle one has left, the end of the state has come to waiting for the other.
    std::atomic<bool> isWatched = false;
    std::thread watcher([&] {
        const std::ptrdiff_t before = threadCount();
        isWatched = true;
        EXPECT_TRUE(test::waitFor([before] { return threadCount() < before; }));
        isReleased = true;
    });
    EXPECT_TRUE(test::waitFor([&] { return isWatched.load(); }));
    strips.reset();
    watcher.join();
    EXPECT_TRUE(isKept);
}

TEST(InsertWorkers, AreAbandonedAtTheirEndWithAnInsertThatDoesNotReturn) {
    const auto strips = std::make_shared<TwoStrips>();
    platform::abandon(strips);
    std::atomic<bool> isIn = false;
    std::atomic<bool> mayReturn = false;
    const std::thread::id io = std::this_thread::get_id();
    for (auto& before : strips->before)
        before = [&, io] {
            if (std::this_thread::get_id() == io) return;
            isIn = true;
            while (!mayReturn) {
            }
        };
    strips->state.updatePlugins(strips->makeTable());
    EXPECT_TRUE(test::waitFor([&] {
        strips->run();
        return isIn.load();
    }));
    platform::setStopPatience({});
    EXPECT_FALSE(strips->state.insertWorkers->end());
    platform::setStopPatience(platform::usualStopPatience);
    strips->state.abandonInserts();
    const auto isStuck = [](const auto& weak) {
        const auto context = weak.lock();
        return context && context->isStuck();
    };
    EXPECT_EQ(std::ranges::count_if(strips->contexts, isStuck), 1);
    mayReturn = true;
    EXPECT_TRUE(test::waitFor([&] { return !strips->state.insertWorkers->isLate(); }));
}

} // namespace
