#include "platform/base/abandoned.h"
#include "platform/base/stop_patience.h"
#include "plugins/insert_components.h"
#include "soak/stage.h"
#include "support/wait_for.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <variant>

namespace {

using namespace orvane;

std::atomic<std::uint64_t> leap = 0;

/// The machine's clock, moved on by hand.
platform::HostClock leapingClock() {
    return {
        .absoluteTime = []() noexcept { return platform::HostClock::system().absoluteTime() + leap; },
        .timebaseInfo = platform::HostClock::system().timebaseInfo};
}

/// While it lives, no stop waits for a plugin.
struct NoPatience {
    NoPatience() { platform::setStopPatience({}); }
    ~NoPatience() { platform::setStopPatience(platform::usualStopPatience); }
};

/// A live mixer of two strips with a plugin each, which outlives the thread that hangs in the first.
struct HangingShow {
    HangingShow() {
        stage->devices.front().output->listener = [this](auto outputs) {
            ++blocks;
            for (const std::span<const float> output : outputs)
                badBlocks += std::ranges::all_of(output, [](float x) { return std::isfinite(x); }) ? 0 : 1;
        };
        // A copy: each load replaces the published strips.
        const std::vector<session::ChannelStrip> strips = engine.state().channelStrips.get();
        for (const session::ChannelStrip& strip : strips)
            engine.loadPlugin(stage->effects.components.front(), 0, strip.id);
        stage->settle();
    }

    [[nodiscard]] const platform::Uuid& strip(std::size_t index) const {
        return engine.state().channelStrips.get()[index].id;
    }
    void hang(int renders = 1) {
        stage->effects.report.isHeld = true;
        stage->effects.report.hangs = renders;
        ASSERT_TRUE(test::waitFor([&] { return stage->effects.report.isHanging.load(); }));
    }
    /// Lets the plugin return, and whatever its thread does then.
    void release() {
        stage->effects.report.isHeld = false;
        ASSERT_TRUE(test::waitFor([&] { return !stage->effects.report.isHanging; }));
    }
    void expectBlocks() {
        const int before = blocks;
        EXPECT_TRUE(test::waitFor([&] { return blocks > before + 10; }));
    }

    std::shared_ptr<soak::Stage> stage = std::make_shared<soak::Stage>(soak::Stage::Shape{
        .strips = 2,
        .pacing = platform::virtual_devices::VirtualPacing::live,
        .bufferSize = 64,
        .clock = leapingClock()});
    engine::MixerEngine& engine = stage->engine;
    std::atomic<int> blocks = 0;
    std::atomic<int> badBlocks = 0;
};

TEST(HangingPlugin, CostsCyclesThatAreCountedAndNothingElse) {
    HangingShow show;
    engine::MixerEngine& engine = show.engine;
    engine.start();
    ASSERT_TRUE(engine.state().isRunning.get()) << engine.state().lastError.get().value_or("");
    for (int round = 0; round < 10; ++round) {
        SCOPED_TRACE(round);
        const std::uint32_t dropoutsBefore = engine.xrunCount();
        show.hang(4);
        // The plugin waits for these to be done; nothing may wait for the plugin.
        engine.setTrim(show.strip(0), 0.1 * round);
        engine.newSnapshot();
        engine.recallSnapshot(round);
        EXPECT_TRUE(show.stage->effects.report.isHanging);
        show.stage->effects.report.isHeld = false;
        ASSERT_TRUE(test::waitFor([&] { return show.stage->effects.report.hangs <= 0; }));
        show.expectBlocks();
        EXPECT_GT(engine.xrunCount(), dropoutsBefore);
    }
    EXPECT_TRUE(engine.state().isRunning.get());
    EXPECT_EQ(show.badBlocks, 0);
    EXPECT_EQ(engine.state().lastError.get(), std::nullopt);
}

TEST(HangingPlugin, ThatDoesNotReturnIsReportedAfterTwoSecondsUntilItReturns) {
    HangingShow show;
    show.engine.start();
    show.expectBlocks();
    const auto& message = show.engine.state().lastError;
    show.hang();
    for (const auto& [seconds, isTold] : {std::pair{1.9, false}, {0.2, true}}) {
        show.stage->mainThread.advance(std::chrono::milliseconds(300));
        leap += static_cast<std::uint64_t>(seconds * 1e9);
        show.stage->mainThread.advance(std::chrono::milliseconds(300));
        EXPECT_EQ(message.get().has_value(), isTold) << seconds;
    }
    EXPECT_THAT(
        message.get().value_or(""),
        testing::AllOf(testing::HasSubstr("slot1: Mono"), testing::HasSubstr("strip \""))
    );
    show.release();
    show.expectBlocks();
    show.stage->mainThread.advance(std::chrono::milliseconds(300));
    EXPECT_EQ(message.get(), std::nullopt);
}

TEST(HangingPlugin, ThatDoesNotReturnIsAbandonedAtTheStopAndTheOthersContinue) {
    const auto show = std::make_shared<HangingShow>();
    platform::abandon(show);
    const NoPatience noPatience;
    engine::MixerEngine& engine = show->engine;
    engine.start();
    show->expectBlocks();
    show->hang();
    engine.stop();
    EXPECT_FALSE(engine.state().isRunning.get());
    EXPECT_THAT(
        engine.state().lastError.get().value_or(""), testing::HasSubstr("slot1: Mono does not return")
    );
    const bool isFirst = engine.livePlugin(0, show->strip(0)) == nullptr;
    const std::size_t stuck = isFirst ? 0 : 1;
    EXPECT_EQ(engine.livePlugin(0, show->strip(stuck)), nullptr);
    EXPECT_NE(engine.livePlugin(0, show->strip(1 - stuck)), nullptr);
    EXPECT_TRUE(std::holds_alternative<plugins::load_state::Failed>(
        engine.state().pluginLoadStates.get().at({show->strip(stuck), 0})
    ));

    platform::setStopPatience(platform::usualStopPatience);
    show->stage->effects.report.hangs = 0;
    engine.start();
    EXPECT_EQ(engine.state().lastError.get(), std::nullopt);
    show->expectBlocks();
    show->release();
    show->expectBlocks();
    engine.stop();
    EXPECT_EQ(show->stage->effects.report.living, 2);
    EXPECT_EQ(show->stage->effects.report.rendersWithoutResources, 0);
}

TEST(HangingPlugin, ThatDoesNotReturnFromItsFirstBlockIsNotLoaded) {
    const auto show = std::make_shared<HangingShow>();
    platform::abandon(show);
    const NoPatience noPatience;
    test::ScriptedAudioUnit::Report& plugin = show->stage->effects.report;
    plugin.isHeld = true;
    plugin.hangs = 1;
    show->engine.loadPlugin(show->stage->effects.components.front(), 0, show->strip(0));
    show->stage->settle();
    EXPECT_EQ(show->engine.livePlugin(0, show->strip(0)), nullptr);
    EXPECT_THAT(
        show->engine.state().lastError.get().value_or(""),
        testing::HasSubstr("Ch1 slot1: Mono does not return")
    );
    show->release();
}

} // namespace
