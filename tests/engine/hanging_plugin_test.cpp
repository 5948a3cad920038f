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
        stage.effects.report.hangs = 4;
        // Nobody waits for the plugin.
        engine.setTrim(strip, 0.1 * round);
        engine.newSnapshot();
        engine.recallSnapshot(round);
        ASSERT_TRUE(test::waitFor([&] { return stage.effects.report.hangs <= 0; })) << round;
        const int blocksBefore = blocks;
        ASSERT_TRUE(test::waitFor([&] { return blocks > blocksBefore + 10; })) << round;
        EXPECT_GT(engine.xrunCount(), dropoutsBefore) << round;
    }
    EXPECT_TRUE(engine.state().isRunning.get());
    EXPECT_EQ(badBlocks, 0);
    EXPECT_EQ(engine.state().lastError.get(), std::nullopt);
}

} // namespace
