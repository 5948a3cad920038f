#include "audio/render_pass.h"
#include "support/mixer_harness.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace {

using namespace orvane;
using session::OutputRouting;
namespace output = session::output;
using test::DeviceBlocks;
using test::MixerHarness;
using Inputs = std::vector<std::optional<std::int64_t>>;
using Outputs = std::vector<OutputRouting>;

constexpr std::size_t frames = 64;

/// One constant sample value per device channel.
DeviceBlocks constantBlocks(const std::vector<float>& values) {
    DeviceBlocks blocks;
    for (const float value : values)
        blocks.emplace_back(frames, value);
    return blocks;
}

TEST(RenderPass, PlaysAndShowsNothingThatIsNoSoundWhateverTheSettings) {
    constexpr double huge = 1e300;
    const std::pair<const char*, void (*)(MixerHarness&)> cases[] = {
        {"trim", [](MixerHarness& mixer) { mixer.automix.setSettings(0, {.trim = -huge}); }},
        {"trim beyond single precision",
         [](MixerHarness& mixer) { mixer.automix.setSettings(0, {.trim = 1e90}); }},
        {"group gain times a trim of 0",
         [](MixerHarness& mixer) {
             mixer.automix.setSettings(0, {.trim = 0.0, .vocalRole = dsp::VocalRole::lead});
             mixer.automix.setLeadGroupGainDB(huge);
         }},
        {"target", [](MixerHarness& mixer) { mixer.automix.setMasterTargetDB(huge); }},
        {"reference noise", [](MixerHarness& mixer) { mixer.state.setNoiseGain(huge); }}};
    const auto restore = [](MixerHarness& mixer) {
        mixer.automix.setSettings(0, {});
        mixer.automix.setLeadGroupGainDB(0.0);
        mixer.automix.setMasterTargetDB(-10.0);
        mixer.state.setNoiseGain(0.0);
    };
    const auto areNumbers = [](const auto& values) {
        return std::ranges::all_of(values, [](double value) { return std::isfinite(value); });
    };
    constexpr int healthyFrom = 50;
    for (const dsp::LaneKernels* kernels : dsp::supportedLaneKernels())
        for (const auto& [what, spoil] : cases) {
            SCOPED_TRACE(testing::Message() << what << ", " << kernels->name);
            MixerHarness mixer({.strips = 2, .outputs = 3, .kernels = kernels});
            MixerHarness healthy({.strips = 2, .outputs = 3, .kernels = kernels});
            for (MixerHarness* each : {&mixer, &healthy})
                each->state.updateRouting(
                    Inputs{0, 1}, Outputs{output::Mono{0}, output::Mono{1}}, output::Mono{2}
                );
            spoil(mixer);
            for (int block = 0; block < 2 * healthyFrom; ++block) {
                if (block == healthyFrom) restore(mixer);
                const DeviceBlocks captured = constantBlocks({0.5F, 0.25F});
                const DeviceBlocks played = mixer.cycle(captured, frames);
                const DeviceBlocks expected = healthy.cycle(captured, frames);
                ASSERT_TRUE(std::ranges::all_of(played, areNumbers)) << "block " << block;
                const audio::MeterReading reading = mixer.state.readMeters();
                ASSERT_TRUE(areNumbers(reading.channelLevels)) << "block " << block;
                ASSERT_TRUE(areNumbers(reading.gainReductionDB)) << "block " << block;
                ASSERT_TRUE(std::isfinite(reading.masterLevel)) << "block " << block;
                ASSERT_EQ(played[1], expected[1]) << "block " << block;
                if (block < healthyFrom) continue;
                ASSERT_GT(expected[0][0], 0.0F) << "block " << block;
                ASSERT_EQ(played[0], expected[0]) << "block " << block;
            }
        }
}

} // namespace
