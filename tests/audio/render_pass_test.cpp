#include "audio/render_pass.h"
#include "support/mixer_harness.h"
#include "support/random_blocks.h"
#include "support/scripted_unit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <deque>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

namespace {

using namespace orvane;
using namespace orvane::test;
namespace output = session::output;
namespace master_output = session::master_output;
using Inputs = std::vector<std::optional<std::int64_t>>;
using Outputs = std::vector<session::OutputRouting>;

constexpr std::size_t frames = 64;

TEST(RenderPass, PlaysAndShowsFiniteValuesWhateverTheSettings) {
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
                const DeviceBlocks captured = {std::vector(frames, 0.5F), std::vector(frames, 0.25F)};
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

constexpr std::size_t strips = 6;
/// The control side of a running mixer, editing all it can.
class Editor final {
  public:
    explicit Editor(MixerHarness& target) : mixer(target) {}

    void editEverything() {
        Inputs inputs;
        Outputs outputs;
        audio::InsertTable inserts;
        for (std::size_t strip = 0; strip < strips; ++strip) {
            inputs.emplace_back(wholeBetween(random, 0, 3));
            outputs.emplace_back(output::Stereo{
                wholeBetween(random, 0, 3), 3, numberBetween(random, -1.0, 1.0)});
            mixer.automix.setSettings(strip, randomSettings(random));
            inserts.pluginContexts.push_back({freshInsert(), nullptr, freshInsert()});
            inserts.pluginBypassFlags.push_back({oneIn(random, 2), false, oneIn(random, 2)});
        }
        mixer.state.updateRouting(inputs, outputs, master_output::Stereo{wholeBetween(random, 0, 3), 1});
        mixer.state.updatePlugins(std::move(inserts));
        mixer.state.setNoiseGain(numberBetween(random, 0.0, 0.3));
        mixer.automix.setLeadGroupGainDB(numberBetween(random, -40.0, 10.0));
        mixer.automix.setBackingGroupGainDB(numberBetween(random, -40.0, 10.0));
        mixer.automix.setMasterTargetDB(numberBetween(random, -40.0, 0.0));
        mixer.automix.setReleaseMs(numberBetween(random, 0.0, 2000.0));
        EXPECT_EQ(mixer.state.readMeters().gainReductionDB.size(), strips);
        EXPECT_LE(mixer.state.cpuLoad(), 1.0);
        mixer.state.freeRetired();
        log.flush();
    }

  private:
    /// Lets go of its effect, buffers and all, when the last table that holds it is freed.
    std::shared_ptr<plugins::InsertRenderContext> freshInsert() {
        const auto unit = std::make_shared<ScriptedUnit>(std::deque{UnitAct::doubles, UnitAct::fails});
        return std::make_shared<plugins::InsertRenderContext>(
            [unit, render = unit->renderBlock()](
                auto& flags, const auto& now, auto frameCount, auto bus, auto& list, const auto& pull
            ) { return render(flags, now, frameCount, bus, list, pull); },
            1, "Ch1 slot1: Test", log
        );
    }

    MixerHarness& mixer;
    Random random{5};
    platform::SystemLog log{[](const platform::LogLine&) {}};
};

TEST(RenderPass, PlaysValidSamplesWhileEverythingIsEdited) {
    MixerHarness mixer({.strips = strips, .bufferSize = frames, .outputs = 4});
    Editor editor(mixer);
    editor.editEverything();
    mixer.automix.ensureScratch(frames);
    mixer.state.ensureScratch(frames);

    std::atomic<bool> stop = false;
    std::atomic<int> blocks = 0;
    int wild = 0;
    std::thread audioThread([&] {
        Random random(6);
        DeviceBlocks captured(4, std::vector<float>(frames));
        for (std::vector<float>& block : captured)
            fillWithSignal(random, std::span<float>(block));
        DeviceBlocks played(4, std::vector<float>(frames));
        const std::vector<std::span<const float>> inputs = readable(captured);
        const std::vector<std::span<float>> outputs = writable(played);
        while (!stop) {
            {
                const AllocationGuard guard;
                audio::renderPass(inputs, frames, mixer.automix, mixer.state);
                audio::outputPull(mixer.state.outputRingBuffers, outputs, frames);
            }
            for (const std::vector<float>& block : played)
                wild += std::ranges::all_of(block, [](float x) { return std::isfinite(x); }) ? 0 : 1;
            ++blocks;
        }
    });
    for (int edit = 0; edit < 300; ++edit) {
        // Each edit meets a block of its own, however the threads are scheduled.
        const int before = blocks;
        editor.editEverything();
        while (blocks == before)
            std::this_thread::yield();
    }
    stop = true;
    audioThread.join();
    EXPECT_EQ(wild, 0);
    EXPECT_TRUE(mixer.state.freeRetired());
}

} // namespace
