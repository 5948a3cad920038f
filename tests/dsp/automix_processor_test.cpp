#include "baseline/plain_automix.h"
#include "dsp/automix_processor.h"
#include "dsp/decibels.h"
#include "dsp/gain_sharing_mixer.h"
#include "dsp/master_bus_leveler.h"
#include "support/allocation_guard.h"
#include "support/random_blocks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

namespace {

using namespace orvane::dsp;
using namespace orvane::test;
using orvane::baseline::PlainAutomix;

/// Makes the same edit on the fast and the plain automix.
void editBoth(Random& random, AutomixProcessor& fast, PlainAutomix& plain) {
    const auto channel =
        static_cast<std::size_t>(wholeBetween(random, 0, static_cast<long>(fast.channelCount()) - 1));
    plain.settings[channel] = randomSettings(random);
    fast.setSettings(channel, plain.settings[channel]);
    fast.setLeadGroupGainDB(numberBetween(random, -40.0, 10.0));
    plain.leadGain = dbToLinear(fast.leadGroupGainDB());
    fast.setBackingGroupGainDB(numberBetween(random, -40.0, 10.0));
    plain.backingGain = dbToLinear(fast.backingGroupGainDB());
    fast.setReleaseMs(oneIn(random, 5) ? 0.0 : numberBetween(random, 50.0, 2000.0));
    plain.setReleaseMs(fast.releaseMs());
    const double targetDB = numberBetween(random, -40.0, 0.0);
    fast.setMasterTargetDB(targetDB);
    plain.masterTargetRMS = dbToLinear(targetDB);
}

/// Runs a random session through both, without allocating once the scratch is sized, and stops at the first
/// difference.
void compareWithPlain(const LaneKernels& kernels, std::size_t channels, unsigned seed) {
    SCOPED_TRACE(testing::Message() << kernels.name << ", " << channels << " channels, seed " << seed);
    constexpr std::size_t lengths[] = {0, 1, 31, 32, 96, 256, 2048};
    Random random(seed);
    AutomixProcessor fast(channels, 44100.0, 44100.0 / 96, -12.0, kernels);
    PlainAutomix plain(channels, 44100.0, 44100.0 / 96, -12.0);
    fast.ensureScratch(2048);
    const auto mask = std::make_unique<bool[]>(channels);
    for (int block = 0; block < 40; ++block) {
        const std::size_t length = lengths[static_cast<std::size_t>(wholeBetween(random, 0, 6))];
        if (oneIn(random, 2)) editBoth(random, fast, plain);
        ChannelBlocks<double> blocks(channels, length);
        std::vector<PlainAutomix::Block> plainBlocks;
        for (std::size_t i = 0; i < channels; ++i) {
            fillWithSignal(random, blocks[i]);
            plainBlocks.emplace_back(blocks[i].begin(), blocks[i].end());
            mask[i] = !oneIn(random, 6);
        }
        const std::span<const bool> active(mask.get(), channels);
        const auto [outputs, master] = [&] {
            const AllocationGuard guard;
            return fast.process(blocks, active);
        }();
        plain.process(plainBlocks, {active.begin(), active.end()});

        SCOPED_TRACE(testing::Message() << "block " << block);
        for (std::size_t i = 0; i < channels; ++i) {
            ASSERT_TRUE(std::ranges::equal(outputs[i], plain.outputs[i])) << "channel " << i;
            ASSERT_EQ(fast.currentGains()[i], plain.gains[i]) << "channel " << i;
            ASSERT_EQ(fast.currentOutputLevels()[i], plain.outputLevels[i]) << "channel " << i;
        }
        ASSERT_TRUE(std::ranges::equal(master, plain.master));
        ASSERT_EQ(fast.currentMasterGain(), plain.masterGain);
        ASSERT_EQ(fast.currentMasterLevel(), plain.masterLevel);
    }
}

TEST(AutomixProcessor, MatchesThePlainImplementationOnEveryInstructionSet) {
    for (const LaneKernels* kernels : supportedLaneKernels())
        for (const std::size_t channels : {1, 2, 3, 5, 9, 17, 33, 49})
            for (unsigned seed = 1; seed <= 3; ++seed)
                compareWithPlain(*kernels, channels, seed);
}

TEST(GainSharingMixer, TreatsALevelThatIsNotFiniteAsSilence) {
    GainSharingMixer mixer(3, 187.5, 15.0, 400.0, 1e-6, -26.0);
    for (const double gain : mixer.process(std::vector{0.1, std::nan(""), HUGE_VAL}))
        EXPECT_TRUE(std::isfinite(gain));
}

TEST(MasterBusLeveler, RecoversFromAnInfinitelyLoudBus) {
    MasterBusLeveler leveler(1e6, 187.5, 30.0, 500.0, 20.0, -24.0);
    leveler.process(HUGE_VAL);
    leveler.setTargetDB(-18.0);
    EXPECT_GT(leveler.process(dbToLinear(-18.0)), 0.5);
}

} // namespace
