#include "audio/render_pass.h"
#include "baseline/plain_mixer.h"
#include "dsp/decibels.h"
#include "platform/base/flush_denormals.h"
#include "support/mixer_harness.h"
#include "support/no_sound.h"
#include "support/random_blocks.h"
#include "support/scripted_unit.h"

#include <gtest/gtest.h>

#include <deque>
#include <iterator>
#include <memory>
#include <vector>

namespace {

using namespace orvane;
using namespace orvane::test;
using baseline::PlainMixer;
namespace output = session::output;
namespace master_output = session::master_output;

/// The fast mixer and the plain one, given the same show.
class TwoMixers final {
  public:
    TwoMixers(unsigned seed, const dsp::LaneKernels& loops) : random(seed), kernels(loops) {
        plain.automix.settings[shape.strips].excludedFromMasterBus = true;
        reroute();
        regain();
        reinsert();
        for (std::size_t channel = 0; channel < shape.strips; ++channel)
            resettle(channel);
    }

    void edit() {
        if (oneIn(random, 6))
            reroute();
        else if (oneIn(random, 5))
            regain();
        else if (oneIn(random, 4))
            reinsert();
        else
            resettle(static_cast<std::size_t>(wholeBetween(random, 0, static_cast<long>(shape.strips) - 1)));
    }

    /// One block of a random length; the devices play now the same, now another length. Where the fast mixer
    /// is given samples that are no sound, the plain one is given silence.
    void cycle() {
        constexpr std::size_t lengths[] = {0, 1, 3, 17, 31, 32, 63, 96, 256, 511, 2048, 4095, 4096};
        const std::size_t frameCount =
            lengths[static_cast<std::size_t>(wholeBetween(random, 0, std::ssize(lengths) - 1))];
        DeviceBlocks captured(captureChannels, std::vector<float>(frameCount));
        for (std::vector<float>& block : captured)
            fillWithSignal(random, std::span<float>(block));
        DeviceBlocks meant = captured;
        spoil(captured, meant);
        fast.pass(captured, frameCount);
        {
            const platform::FlushDenormals flushDenormals;
            plain.process(readable(meant), frameCount);
        }
        const std::size_t playedFrames = oneIn(random, 4) ? frameCount / 2 : frameCount;
        comparePlayed(fast.state.outputRingBuffers, plain.rings, playedFrames);
        comparePlayed(fast.state.masterOutputRingBuffers, plain.masterRings, playedFrames);
        compareMeters();
    }

  private:
    /// Now and then a channel brings what is no sound, in a few samples or throughout.
    void spoil(DeviceBlocks& captured, DeviceBlocks& meant) {
        for (std::size_t channel = 0; channel < captured.size(); ++channel) {
            if (!oneIn(random, 5)) continue;
            const long samplesApart = oneIn(random, 2) ? 1 : 100;
            for (std::size_t i = 0; i < captured[channel].size(); ++i) {
                if (!oneIn(random, samplesApart)) continue;
                captured[channel][i] = noSound[static_cast<std::size_t>(wholeBetween(random, 0, 5))];
                meant[channel][i] = 0.0F;
            }
        }
    }

    void comparePlayed(
        const audio::RingBuffers& rings, std::vector<baseline::PlainRing>& plainRings, std::size_t frames
    ) {
        const DeviceBlocks played = MixerHarness::pull(rings, rings.size() + 1, frames);
        DeviceBlocks expected(plainRings.size() + 1, std::vector<float>(frames, -99.0F));
        PlainMixer::pull(plainRings, writable(expected));
        for (std::size_t c = 0; c < played.size(); ++c)
            ASSERT_EQ(played[c], expected[c]) << "output " << c;
    }

    void compareMeters() {
        const audio::MeterReading reading = fast.state.readMeters();
        ASSERT_EQ(reading.channelLevels, plain.automix.outputLevels);
        ASSERT_EQ(reading.masterLevel, plain.automix.masterLevel);
        ASSERT_EQ(reading.gainReductionDB, plain.gainReduction);
    }

    std::int64_t anyChannel(std::size_t count) {
        return wholeBetween(random, -1, static_cast<long>(count) + 1);
    }

    void reroute() {
        std::vector<std::optional<std::int64_t>> inputs;
        std::vector<session::OutputRouting> outputs;
        for (std::size_t strip = 0; strip < shape.strips; ++strip) {
            inputs.push_back(oneIn(random, 6) ? std::nullopt : std::optional(anyChannel(captureChannels)));
            session::OutputRouting routing = output::Stereo{
                anyChannel(shape.outputs), anyChannel(shape.outputs), numberBetween(random, -1.0, 1.0)};
            if (oneIn(random, 4)) routing = output::Mono{anyChannel(shape.outputs)};
            if (oneIn(random, 4)) routing = output::None{};
            outputs.push_back(routing);
        }
        const std::size_t masterChannels = shape.masterOutputs == 0 ? shape.outputs : shape.masterOutputs;
        session::MasterOutputRouting master = master_output::None{};
        if (oneIn(random, 2)) master = master_output::Mono{anyChannel(masterChannels)};
        if (oneIn(random, 2))
            master = master_output::Stereo{anyChannel(masterChannels), anyChannel(masterChannels)};
        fast.state.updateRouting(inputs, outputs, master);
        plain.setRouting(inputs, outputs, master);
    }

    void regain() {
        plain.noiseGain = oneIn(random, 3) ? 0.0 : numberBetween(random, 0.0, 0.3);
        fast.state.setNoiseGain(plain.noiseGain);
        const double leadDB = numberBetween(random, -40.0, 10.0);
        fast.automix.setLeadGroupGainDB(leadDB);
        plain.automix.leadGain = dsp::dbToLinear(leadDB);
        const double targetDB = numberBetween(random, -40.0, 0.0);
        fast.automix.setMasterTargetDB(targetDB);
        plain.automix.masterTargetRMS = dsp::dbToLinear(targetDB);
        const double releaseMs = numberBetween(random, 0.0, 2000.0);
        fast.automix.setReleaseMs(releaseMs);
        plain.automix.setReleaseMs(releaseMs);
    }

    void resettle(std::size_t strip) {
        plain.automix.settings[strip] = randomSettings(random);
        fast.automix.setSettings(strip, plain.automix.settings[strip]);
    }

    /// Each side has effects of its own, so that both are rendered as often.
    std::shared_ptr<plugins::InsertRenderContext> makeInsert(UnitAct act, std::size_t channels) {
        units.emplace_back(std::deque{act});
        return std::make_shared<plugins::InsertRenderContext>(
            units.back().renderBlock(), channels, "Insert", log
        );
    }

    void reinsert() {
        audio::InsertTable table;
        plain.inserts.assign(shape.strips, {});
        plain.bypassed.assign(shape.strips, {});
        inserts.clear();
        for (std::size_t strip = 0; strip < shape.strips; ++strip) {
            table.pluginContexts.emplace_back();
            for (int slot = 0; slot < 3; ++slot) {
                const auto act = static_cast<UnitAct>(wholeBetween(random, 0, 6));
                const auto channels = static_cast<std::size_t>(wholeBetween(random, 1, 2));
                const bool isEmpty = !oneIn(random, 3);
                table.pluginContexts.back().push_back(isEmpty ? nullptr : makeInsert(act, channels));
                inserts.push_back(isEmpty ? nullptr : makeInsert(act, channels));
                plain.inserts[strip].push_back(inserts.back().get());
                if (!oneIn(random, 5)) plain.bypassed[strip].push_back(oneIn(random, 4));
            }
        }
        table.pluginBypassFlags = plain.bypassed;
        fast.state.updatePlugins(std::move(table));
    }

    Random random;
    const dsp::LaneKernels& kernels;
    std::size_t captureChannels = static_cast<std::size_t>(wholeBetween(random, 1, 12));
    MixerHarness::Shape shape{
        .strips = static_cast<std::size_t>(wholeBetween(random, 1, 20)),
        .sampleRate = oneIn(random, 2) ? 48000.0 : 44100.0,
        .bufferSize = 256,
        .outputs = static_cast<std::size_t>(wholeBetween(random, 1, 8)),
        .masterOutputs = static_cast<std::size_t>(oneIn(random, 2) ? 0 : wholeBetween(random, 1, 4)),
        .kernels = &kernels,
        .insertWorkers = static_cast<std::size_t>(oneIn(random, 2) ? 0 : wholeBetween(random, 1, 3))};
    platform::SystemLog log{[](const platform::LogLine&) {}};
    std::deque<ScriptedUnit> units;
    std::vector<std::shared_ptr<plugins::InsertRenderContext>> inserts;
    MixerHarness fast{shape};
    PlainMixer plain{
        {shape.strips, shape.sampleRate, shape.bufferSize, shape.outputs, shape.masterOutputs}, -10.0};
};

TEST(RenderPass, MatchesThePlainMixerInRandomSessionsOnEveryInstructionSet) {
    for (const dsp::LaneKernels* kernels : dsp::supportedLaneKernels())
        for (unsigned seed = 1; seed <= 60; ++seed) {
            TwoMixers mixers(seed, *kernels);
            for (int block = 0; block < 40; ++block) {
                SCOPED_TRACE(testing::Message() << kernels->name << ", seed " << seed << ", block " << block);
                if (block > 0) mixers.edit();
                mixers.cycle();
                if (testing::Test::HasFatalFailure()) return;
            }
        }
}

} // namespace
