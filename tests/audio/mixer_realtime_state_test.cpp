#include "audio/mixer_realtime_state.h"
#include "support/mixer_harness.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace {

using namespace orvane;
using audio::RoutingTable;
using session::OutputRouting;
namespace output = session::output;
namespace master_output = session::master_output;
using test::MixerHarness;
using Channels = std::vector<std::size_t>;

TEST(RoutingTable, NamesEveryOutputInUseOnceAndNoneBelowZero) {
    const std::vector<OutputRouting> outputs = {
        output::Stereo{-1, 3, 0.0},  output::None{}, output::Mono{7}, output::Mono{3}, output::Mono{-2},
        output::Stereo{1000, 0, 0.5}};
    const RoutingTable table({}, outputs, master_output::Stereo{7, -9});
    EXPECT_EQ(table.activeOutputChannels, (Channels{0, 3, 7, 1000}));
    EXPECT_EQ(table.activeMasterOutputChannels, (Channels{7}));
    EXPECT_EQ(table.activeChannelsWithMaster, (Channels{0, 3, 7, 1000}));
    EXPECT_EQ(RoutingTable({}, {}, master_output::Mono{4}).activeChannelsWithMaster, (Channels{4}));
    EXPECT_TRUE(RoutingTable({}, {}, master_output::None{}).activeChannelsWithMaster.empty());
}

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
