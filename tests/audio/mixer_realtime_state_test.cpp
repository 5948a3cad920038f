#include "audio/mixer_realtime_state.h"
#include "support/mixer_harness.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace {

using namespace orvane;
using session::OutputRouting;
using test::MixerHarness;

TEST(RenderTable, FreesWhatWasReplacedOnlyWhenNoPassHoldsIt) {
    struct Table {
        std::shared_ptr<int> content;
    };
    audio::RenderTable<Table> tables;
    const auto old = std::make_shared<int>(1);
    tables.replace(std::make_unique<const Table>(old));
    {
        const auto pass = tables.hold();
        tables.replace(std::make_unique<const Table>(std::make_shared<int>(2)));
        tables.replace(std::make_unique<const Table>(std::make_shared<int>(3)));
        EXPECT_EQ(*pass->content, 1);
        EXPECT_FALSE(tables.freeRetired());
        EXPECT_EQ(old.use_count(), 2);
    }
    EXPECT_TRUE(tables.freeRetired());
    EXPECT_EQ(old.use_count(), 1);
    EXPECT_EQ(*tables.hold()->content, 3);
}

std::uint64_t ticks = 0;

/// A clock on which every look is one millisecond after the last, counted in ticks of half a microsecond.
platform::HostClock steppingClock() {
    return {[]() noexcept { return ticks += 2000; }, {500, 1}};
}

TEST(MixerRealtimeState, SmoothsTheShareOfTheBlockThatAPassTakes) {
    // 96 frames at 48 kHz last two milliseconds, and the pass takes one.
    MixerHarness mixer({.strips = 1, .bufferSize = 96}, steppingClock());
    mixer.state.updateRouting(std::vector<std::optional<std::int64_t>>(1), std::vector<OutputRouting>(1), {});
    mixer.pass({}, 96);
    EXPECT_DOUBLE_EQ(mixer.state.cpuLoad(), 0.1);
    mixer.pass({}, 96);
    EXPECT_DOUBLE_EQ(mixer.state.cpuLoad(), 0.18);
    mixer.pass({}, 0);
    EXPECT_DOUBLE_EQ(mixer.state.cpuLoad(), 0.18);
    mixer.pass({}, 8);
    EXPECT_DOUBLE_EQ(mixer.state.cpuLoad(), 0.18 + (1.0 - 0.18) * 0.2);
}

} // namespace
