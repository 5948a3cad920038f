#include "audio/meter_model.h"
#include "audio/meter_timer.h"
#include "dsp/decibels.h"
#include "support/manual_main_thread.h"
#include "support/mixer_harness.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace {

using namespace orvane;
using namespace std::chrono_literals;
using audio::MeterModel;

std::uint64_t ticks = 0;

/// Each reading is one millisecond after the last, in ticks of half a microsecond, so a pass takes one.
platform::HostClock steppingClock() {
    return {[]() noexcept { return ticks += 2000; }, {500, 1}};
}

TEST(MeterModel, ShowsWhatWasMeasuredAndSmoothsOnlyTheNoise) {
    // Of two strips the first hears a steady signal, with blocks of two milliseconds.
    test::MixerHarness mixer({.strips = 2, .bufferSize = 96}, steppingClock());
    mixer.state.updateRouting(
        std::vector<std::optional<std::int64_t>>{0, std::nullopt}, std::vector<session::OutputRouting>(2), {}
    );
    mixer.state.setNoiseGain(0.5);
    mixer.pass({std::vector<float>(96, 0.5F)}, 96);
    MeterModel model(2);
    const audio::MeterReading reading = mixer.state.readMeters();
    ASSERT_GT(reading.channelLevels[0], 0.0);
    ASSERT_GT(reading.masterLevel, 0.0);
    ASSERT_GT(reading.gainReductionDB[1], 0.0);
    ASSERT_GT(reading.referenceNoiseLevel, 0.0);
    for (const double share : {0.12, 0.2256}) {
        model.update(mixer.state);
        EXPECT_EQ(model.channelMeters.get(), reading.channelLevels);
        EXPECT_EQ(model.masterMeter.get(), reading.masterLevel);
        EXPECT_EQ(model.channelGainReductionDB.get(), reading.gainReductionDB);
        EXPECT_NEAR(model.pinkNoiseLevel.get(), share * reading.referenceNoiseLevel, 1e-12);
        EXPECT_DOUBLE_EQ(model.cpuLoad.get(), 0.1);
    }
}

TEST(MeterModel, HoldsPeaksForTwoSecondsAndOversUntilTheirReset) {
    test::MixerHarness mixer({.strips = 2, .outputs = 3});
    mixer.state.updateRouting(
        std::vector<std::optional<std::int64_t>>{0, std::nullopt},
        std::vector<session::OutputRouting>{session::output::Mono{1}, session::output::None{}},
        session::master_output::Mono{2}
    );
    MeterModel model(2);
    // Four samples at and above full scale in two groups, and one that is no number.
    std::vector<float> loud(256, 0.25F);
    loud[3] = loud[4] = -1.0F;
    loud[9] = loud[10] = 1.5F;
    loud[20] = NAN;
    mixer.pass({loud}, 256);
    const std::vector<float> quiet(256, 0.125F);
    for (int tick = 0; tick < 59; ++tick) {
        model.update(mixer.state);
        ASSERT_EQ(model.inputPeaks.get()[0], (audio::SignalPeak{true, 1.5, 2})) << "tick " << tick;
        mixer.pass({quiet}, 256);
    }
    EXPECT_EQ(model.inputPeaks.get()[1], audio::SignalPeak{});
    EXPECT_FALSE(model.outputPeaks.get()[0].isUsed);
    EXPECT_GT(model.outputPeaks.get()[1].peak, 0.5);
    EXPECT_EQ(model.outputPeaks.get()[2].peak, model.masterPeak.get().peak);
    for (int tick = 0; tick < 3; ++tick) {
        model.update(mixer.state);
        mixer.pass({quiet}, 256);
    }
    EXPECT_LT(model.inputPeaks.get()[0].peak, 0.2);
    EXPECT_EQ(model.inputPeaks.get()[0].overs, 2U);
    model.resetOvers();
    EXPECT_EQ(model.inputPeaks.get()[0].overs, 0U);
}

TEST(MeterModel, ShowsTheLargestReductionOfTheLimiterSinceTheLastTick) {
    test::MixerHarness mixer({.strips = 1});
    mixer.state.updateRouting(
        std::vector<std::optional<std::int64_t>>{0}, std::vector<session::OutputRouting>(1),
        session::master_output::Mono{0}
    );
    mixer.state.limiter = std::make_unique<dsp::TruePeakLimiter>(48000.0);
    mixer.state.limiter->setCeiling(-20.0);
    MeterModel model(1);
    model.update(mixer.state);
    EXPECT_EQ(model.limiterReductionDB.get(), 0.0);
    mixer.pass({std::vector<float>(256, 0.5F)}, 256);
    const double reduction = -dsp::linearToDB(mixer.state.limiter->lowestGain());
    mixer.state.publishLimiterGain(1.0);
    model.update(mixer.state);
    EXPECT_GT(reduction, 1.0);
    EXPECT_DOUBLE_EQ(model.limiterReductionDB.get(), reduction);
    model.update(mixer.state);
    EXPECT_EQ(model.limiterReductionDB.get(), 0.0);
}

TEST(MixerRealtimeState, SmoothsTheShareOfTheBlockThatAPassTakes) {
    test::MixerHarness mixer({.strips = 1, .bufferSize = 96}, steppingClock());
    mixer.state.updateRouting(
        std::vector<std::optional<std::int64_t>>(1), std::vector<session::OutputRouting>(1), {}
    );
    // A block without frames does not count; a pass of 8 frames is late.
    for (const auto& [frames, load] : {std::pair(96U, 0.1), {96U, 0.18}, {0U, 0.18}, {8U, 0.344}}) {
        mixer.pass({}, frames);
        EXPECT_DOUBLE_EQ(mixer.state.cpuLoad(), load) << frames;
    }
}

TEST(MeterModel, RecoversFromEndlessNoise) {
    test::MixerHarness mixer({.strips = 1});
    mixer.state.updateRouting(
        std::vector<std::optional<std::int64_t>>(1), std::vector<session::OutputRouting>(1), {}
    );
    MeterModel model(1);
    for (const double gain : {1e300, 0.5}) {
        mixer.state.setNoiseGain(gain);
        mixer.pass({std::vector<float>(256, 0.0F)}, 256);
        model.update(mixer.state);
    }
    EXPECT_GT(model.pinkNoiseLevel.get(), 0.0);
    EXPECT_LT(model.pinkNoiseLevel.get(), 1.0);
}

TEST(MeterTimer, UpdatesThirtyTimesASecondWhileItsRunLasts) {
    test::ManualMainThread mainThread;
    MeterModel model(2);
    int updates = 0;
    const platform::Subscription counter = model.masterMeter.subscribe([&updates](double) { ++updates; });
    audio::MeterTimer timer(mainThread, model);
    auto state = std::make_shared<audio::MixerRealtimeState>(2);
    timer.start(state);
    timer.start(state);
    mainThread.advance(1s);
    EXPECT_EQ(updates, 30);
    timer.stop();
    mainThread.advance(1s);
    timer.start(state);
    state.reset();
    mainThread.advance(1s);
    EXPECT_EQ(updates, 30);
}

} // namespace
