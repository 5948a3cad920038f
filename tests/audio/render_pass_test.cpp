#include "audio/render_pass.h"
#include "dsp/decibels.h"
#include "support/mixer_harness.h"
#include "support/scripted_unit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace orvane;
using session::MasterOutputRouting;
using session::OutputRouting;
namespace output = session::output;
namespace master_output = session::master_output;
using test::DeviceBlocks;
using test::MixerHarness;
using test::ScriptedUnit;
using test::UnitAct;
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
    const auto centre = static_cast<float>(std::sqrt(0.5));
    struct Case {
        const char* what;
        Inputs inputs;
        Outputs outputs;
        std::vector<double> heard;
    };
    for (const Case& one : {
             Case{"strips sum on one output", {0, 1}, {output::Mono{2}, output::Mono{2}}, {0, 0, 0.75, 0}},
             Case{
                 "centre",
                 {0, 1},
                 {output::Stereo{0, 1, 0.0}, output::None{}},
                 {0.5 * centre, 0.5 * centre, 0, 0}},
             Case{
                 "hard left and right",
                 {0, 1},
                 {output::Stereo{0, 1, -1.0}, output::Stereo{2, 3, 1.0}},
                 {0.5, 0, 0.0, 0.25}},
             Case{"one input twice", {1, 1}, {output::Mono{0}, output::Mono{3}}, {0.25, 0, 0, 0.25}},
             Case{"no such input", {std::nullopt, 9}, {output::Mono{0}, output::Mono{1}}, {0, 0, 0, 0}},
             Case{"negative input", {-1, 0}, {output::Mono{0}, output::Mono{1}}, {0, 0.5, 0, 0}},
             Case{
                 "outputs that are not there",
                 {0, 1},
                 {output::Stereo{3, 4, -1.0}, output::Mono{-1}},
                 {0, 0, 0, 0.5}},
         }) {
        BypassedStrips mixer({.strips = 2, .outputs = 4});
        const std::vector<double> heard = mixer.play({0.5F, 0.25F}, one.inputs, one.outputs);
        for (std::size_t c = 0; c < heard.size(); ++c)
            EXPECT_NEAR(heard[c], one.heard[c], 1e-7) << one.what << ", output " << c;
    }
}

TEST(RenderPass, AddsTheMasterBusToItsOutputsOnTheMainDevice) {
    BypassedStrips mixer({.strips = 2, .outputs = 3});
    mixer.automix.setSettings(1, {.bypassed = true});
    const std::vector<double> heard =
        mixer.play({0.5F, 0.25F}, {0, 1}, {output::Mono{0}, output::None{}}, master_output::Stereo{0, 1});
    const double master = 0.25 * mixer.automix.currentMasterGain();
    EXPECT_NEAR(heard[0], 0.5 + master, 1e-7);
    EXPECT_NEAR(heard[1], master, 1e-7);
    EXPECT_EQ(heard[2], 0.0);
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

TEST(RenderPass, TakesAnEmptyBlockInItsStride) {
    MixerHarness mixer({.strips = 1});
    mixer.state.updateRouting(Inputs{0}, Outputs{output::Mono{0}}, master_output::Stereo{0, 1});
    mixer.pass({{}}, 0);
    EXPECT_EQ(mixer.state.readMeters().channelLevels.size(), 2U);
    EXPECT_EQ(MixerHarness::pull(mixer.state.outputRingBuffers, 1, 4)[0], std::vector<float>(4, 0.0F));
}

TEST(OutputPull, SilencesWhatHasNoRingAndWhatRunsShort) {
    const audio::RingBuffers rings = test::makeRings(1, 4);
    rings[0]->write(std::vector<float>{1.0F, 2.0F});
    const DeviceBlocks played = MixerHarness::pull(rings, 2, 3);
    EXPECT_EQ(played[0], (std::vector<float>{1.0F, 2.0F, 0.0F}));
    EXPECT_EQ(played[1], std::vector<float>(3, 0.0F));
}

/// A context around a scripted effect.
struct Effect {
    explicit Effect(UnitAct act) : unit({act}) {
        context =
            std::make_shared<plugins::InsertRenderContext>(unit.renderBlock(), 1, "Ch1 slot1: Test", log);
    }

    platform::SystemLog log{[](const platform::LogLine&) {}};
    ScriptedUnit unit;
    std::shared_ptr<plugins::InsertRenderContext> context;
};

TEST(RenderPass, RunsInsertsInSlotOrderWhereTheirStripHasAnInput) {
    Effect doubles(UnitAct::doubles);
    Effect quarter(UnitAct::replacesPointers);
    struct Case {
        const char* what;
        std::vector<std::shared_ptr<plugins::InsertRenderContext>> slots;
        std::vector<bool> bypassed;
        std::optional<std::int64_t> input;
        double heard;
    };
    for (const Case& one :
         {Case{"none", {nullptr, nullptr}, {false, false}, 0, 0.125},
          Case{"second slot", {nullptr, doubles.context}, {false, false}, 0, 0.25},
          Case{"in order", {quarter.context, doubles.context}, {false, false}, 0, 0.5},
          Case{"in the other order", {doubles.context, quarter.context}, {false, false}, 0, 0.25},
          Case{"bypassed", {quarter.context, doubles.context}, {true, false}, 0, 0.25},
          Case{"flags missing", {quarter.context, doubles.context}, {}, 0, 0.5},
          Case{"no input", {quarter.context}, {false}, std::nullopt, 0.0}}) {
        BypassedStrips mixer({.strips = 2, .outputs = 1});
        mixer.state.updatePlugins({{one.slots}, {one.bypassed}});
        const std::vector<double> heard =
            mixer.play({0.125F}, {one.input, std::nullopt}, {output::Mono{0}, output::None{}});
        EXPECT_NEAR(heard[0], one.heard, 1e-7) << one.what;
    }
}

} // namespace
