#include "plugins/insert_components.h"
#include "soak/stage.h"
#include "support/wait_for.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>

namespace {

using namespace orvane;

TEST(HangingPlugin, CostsCyclesThatAreCountedAndNothingElse) {
    soak::Stage stage({.strips = 4, .pacing = platform::VirtualPacing::live, .bufferSize = 64});
    std::atomic<int> blocks = 0;
    std::atomic<int> badBlocks = 0;
    stage.devices.front().output->listener = [&](auto outputs) {
        ++blocks;
        for (const std::span<const float> output : outputs)
            badBlocks += std::ranges::all_of(output, [](float x) { return std::isfinite(x); }) ? 0 : 1;
    };
    engine::MixerEngine& engine = stage.engine;
    const platform::Uuid strip = engine.state().channelStrips.get().front().id;
    engine.loadPlugin(stage.effects.components.front(), 0, strip);
    stage.settle();
    engine.start();
    ASSERT_TRUE(engine.state().isRunning.get()) << engine.state().lastError.get().value_or("");
    for (int round = 0; round < 10; ++round) {
        const std::uint32_t dropoutsBefore = engine.xrunCount();
        test::ScriptedAudioUnit::Report& plugin = stage.effects.report;
        plugin.isHeld = true;
        plugin.hangs = 4;
        ASSERT_TRUE(test::waitFor([&] { return plugin.isHanging.load(); })) << round;
        // The plugin waits for these to be done; nobody may wait for the plugin.
        engine.setTrim(strip, 0.1 * round);
        engine.newSnapshot();
        engine.recallSnapshot(round);
        EXPECT_TRUE(plugin.isHanging.load()) << round;
        plugin.isHeld = false;
        ASSERT_TRUE(test::waitFor([&] { return plugin.hangs <= 0; })) << round;
        const int blocksBefore = blocks;
        ASSERT_TRUE(test::waitFor([&] { return blocks > blocksBefore + 10; })) << round;
        EXPECT_GT(engine.xrunCount(), dropoutsBefore) << round;
    }
    EXPECT_TRUE(engine.state().isRunning.get());
    EXPECT_EQ(badBlocks, 0);
    EXPECT_EQ(engine.state().lastError.get(), std::nullopt);
}

} // namespace
