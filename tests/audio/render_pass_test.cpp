#include "audio/render_pass.h"
#include "dsp/decibels.h"
#include "support/mixer_harness.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <tuple>
#include <utility>
#include <vector>

namespace {

using namespace orvane;
using session::MasterOutputRouting;
using session::OutputRouting;
namespace output = session::output;
namespace master_output = session::master_output;
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

/// Strips that play at unity whatever the others do, so that what is heard is what was routed.
struct BypassedStrips : MixerHarness {
    explicit BypassedStrips(const Shape& shape) : MixerHarness(shape) {
        for (std::size_t strip = 0; strip < shape.strips; ++strip)
            automix.setSettings(strip, {.bypassed = true, .excludedFromMasterBus = true});
    }

    /// The first sample that each output plays.
    std::vector<double> play(
        const std::vector<float>& captured, const Inputs& inputs, const Outputs& outputs,
        const MasterOutputRouting& master = {}
    ) {
        state.updateRouting(inputs, outputs, master);
        std::vector<double> heard;
        for (const std::vector<float>& block : cycle(constantBlocks(captured), frames))
            heard.push_back(block[0]);
        return heard;
    }
};

TEST(RenderPass, RoutesStripsToTheOutputsTheyName) {
    using output::Mono;
    using output::Stereo;
    constexpr double centre = 0.5 * std::numbers::sqrt2 / 2.0;
    const std::tuple<const char*, Inputs, Outputs, std::vector<double>> cases[] = {
        {"strips sum on one output", {0, 1}, {Mono{2}, Mono{2}}, {0, 0, 0.75, 0}},
        {"centre", {0, 1}, {Stereo{0, 1, 0.0}, output::None{}}, {centre, centre, 0, 0}},
        {"hard left and right", {0, 1}, {Stereo{0, 1, -1.0}, Stereo{2, 3, 1.0}}, {0.5, 0, 0.0, 0.25}},
        {"one input twice", {1, 1}, {Mono{0}, Mono{3}}, {0.25, 0, 0, 0.25}},
        {"no such input", {std::nullopt, 9}, {Mono{0}, Mono{1}}, {0, 0, 0, 0}},
        {"negative input", {-1, 0}, {Mono{0}, Mono{1}}, {0, 0.5, 0, 0}},
        {"outputs that are not there", {0, 1}, {Stereo{3, 4, -1.0}, Mono{-1}}, {0, 0, 0, 0.5}}};
    for (const auto& [what, inputs, outputs, expected] : cases) {
        BypassedStrips mixer({.strips = 2, .outputs = 4});
        const std::vector<double> heard = mixer.play({0.5F, 0.25F}, inputs, outputs);
        for (std::size_t c = 0; c < heard.size(); ++c)
            EXPECT_NEAR(heard[c], expected[c], 1e-7) << what << ", output " << c;
    }
}

TEST(RenderPass, SendsOnlyTheMasterBusToASeparateDevice) {
    BypassedStrips mixer({.strips = 1, .outputs = 2, .masterOutputs = 3});
    mixer.automix.setSettings(0, {.bypassed = true});
    // Both sides on one output: the bus is copied there, not added twice.
    for (const std::int64_t right : {0, 2}) {
        const std::vector<double> heard =
            mixer.play({0.5F}, {0}, {output::Mono{1}}, master_output::Stereo{0, right});
        EXPECT_EQ(heard, (std::vector<double>{0.0, 0.5}));
        const DeviceBlocks played = MixerHarness::pull(mixer.state.masterOutputRingBuffers, 3, frames);
        const auto master = static_cast<float>(0.5 * mixer.automix.currentMasterGain());
        EXPECT_EQ(played[0][0], master);
        EXPECT_EQ(played[1][0], 0.0F);
        EXPECT_EQ(played[2][0], right == 2 ? master : 0.0F);
    }
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
                ASSERT_EQ(played[0], expected[0]) << "block " << block;
            }
        }
}

TEST(RenderPass, PublishesLevelsAndGainReductionOfEveryStrip) {
    MixerHarness mixer({.strips = 3, .outputs = 1});
    mixer.automix.setSettings(1, {.trim = 0.5, .bypassed = true});
    mixer.state.updateRouting(Inputs{0, 1, 5}, Outputs(3), {});
    for (int block = 0; block < 3000; ++block)
        mixer.pass(constantBlocks({0.5F, 0.5F}), frames);
    const audio::MeterReading reading = mixer.state.readMeters();
    ASSERT_EQ(reading.channelLevels.size(), 4U);
    EXPECT_NEAR(reading.channelLevels[0], 0.5, 1e-6);
    EXPECT_EQ(reading.channelLevels[1], 0.25);
    EXPECT_EQ(reading.channelLevels[2], 0.0);
    EXPECT_NEAR(reading.gainReductionDB[0], 0.0, 1e-4);
    // A bypassed strip is not turned down, but its share of the decision is that of a silent one.
    EXPECT_NEAR(reading.gainReductionDB[1], 26.0, 1e-4);
    EXPECT_NEAR(reading.gainReductionDB[2], 26.0, 1e-4);
    EXPECT_NEAR(dsp::linearToDB(reading.masterLevel), -10.0, 1e-6);
    EXPECT_EQ(reading.referenceNoiseLevel, 0.0);

    mixer.state.setNoiseGain(0.25);
    mixer.pass(constantBlocks({0.5F, 0.5F}), frames);
    EXPECT_GT(mixer.state.readMeters().referenceNoiseLevel, 0.0);
}

} // namespace
