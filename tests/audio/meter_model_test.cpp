#include "audio/meter_model.h"
#include "audio/meter_timer.h"
#include "support/manual_main_thread.h"
#include "support/mixer_harness.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace {

using namespace orvane;
using namespace std::chrono_literals;
using audio::MeterModel;
using audio::MeterTimer;
using audio::MixerRealtimeState;

/// Every look at it is one millisecond after the last: a pass takes one.
std::uint64_t milliseconds = 0;
platform::HostClock steppingClock() {
    return {[]() noexcept { return ++milliseconds; }, {1'000'000, 1}};
}

/// A mixer of two strips whose first hears a steady signal, with blocks of two milliseconds.
struct MeasuredMixer {
    MeasuredMixer() : mixer({.strips = 2, .bufferSize = 96}, steppingClock()) {
        mixer.state.updateRouting(
            std::vector<std::optional<std::int64_t>>{0, std::nullopt}, std::vector<session::OutputRouting>(2),
            {}
        );
        mixer.state.setNoiseGain(0.5);
    }

    void pass() { mixer.pass({std::vector<float>(96, 0.5F)}, 96); }

    test::MixerHarness mixer;
};

TEST(MeterModel, BeginsAtRest) {
    const MeterModel model(3);
    EXPECT_EQ(model.channelMeters.get(), std::vector<double>(3, 0.0));
    EXPECT_EQ(model.channelGainReductionDB.get(), std::vector<double>(3, 0.0));
    EXPECT_EQ(model.masterMeter.get(), 0.0);
    EXPECT_EQ(model.cpuLoad.get(), 0.0);
    EXPECT_EQ(model.pinkNoiseLevel.get(), 0.0);
}

TEST(MeterModel, ShowsTheReferenceNoiseFromTheFirstBlockOn) {
    MeasuredMixer measured;
    MeterModel model(2);
    model.update(measured.mixer.state);
    EXPECT_EQ(model.channelMeters.get(), std::vector<double>(2, 0.0));
    measured.pass();
    model.update(measured.mixer.state);
    EXPECT_EQ(model.channelMeters.get().size(), 3U);
}

TEST(MeterModel, ShowsWhatWasMeasuredAndSmoothsOnlyTheNoise) {
    MeasuredMixer measured;
    MeterModel model(2);
    measured.pass();
    const audio::MeterReading reading = measured.mixer.state.readMeters();
    ASSERT_GT(reading.channelLevels[0], 0.0);
    ASSERT_GT(reading.masterLevel, 0.0);
    ASSERT_GT(reading.gainReductionDB[1], 0.0);
    ASSERT_GT(reading.referenceNoiseLevel, 0.0);
    for (const double share : {0.12, 0.2256}) {
        model.update(measured.mixer.state);
        EXPECT_EQ(model.channelMeters.get(), reading.channelLevels);
        EXPECT_EQ(model.masterMeter.get(), reading.masterLevel);
        EXPECT_EQ(model.channelGainReductionDB.get(), reading.gainReductionDB);
        EXPECT_NEAR(model.pinkNoiseLevel.get(), share * reading.referenceNoiseLevel, 1e-12);
        EXPECT_DOUBLE_EQ(model.cpuLoad.get(), 0.1);
    }
}

TEST(MeterModel, KeepsAllButTheLoadAtStop) {
    MeasuredMixer measured;
    MeterModel model(2);
    measured.pass();
    model.update(measured.mixer.state);
    const std::vector<double> last = model.channelMeters.get();
    const double noise = model.pinkNoiseLevel.get();
    model.showStopped();
    EXPECT_EQ(model.cpuLoad.get(), 0.0);
    EXPECT_EQ(model.channelMeters.get(), last);
    EXPECT_EQ(model.pinkNoiseLevel.get(), noise);
}

struct MeterTimerTest : testing::Test {
    int updatesDuring(std::chrono::nanoseconds duration) {
        updates = 0;
        mainThread.advance(duration);
        return updates;
    }

    test::ManualMainThread mainThread;
    MeterModel model{2};
    int updates = 0;
    const audio::Subscription counter = model.cpuLoad.subscribe([this](const double&) { ++updates; });
    MeterTimer timer{mainThread, model};
    std::shared_ptr<MixerRealtimeState> state = std::make_shared<MixerRealtimeState>(2);
};

TEST_F(MeterTimerTest, UpdatesThirtyTimesASecondUntilItStops) {
    EXPECT_EQ(updatesDuring(1s), 0);
    timer.start(state);
    EXPECT_EQ(updatesDuring(1s), 30);
    timer.stop();
    EXPECT_EQ(updatesDuring(1s), 0);
}

TEST_F(MeterTimerTest, RunsOnceHoweverOftenItIsStarted) {
    timer.start(state);
    timer.start(state);
    EXPECT_EQ(updatesDuring(1s), 30);
}

TEST_F(MeterTimerTest, DoesNothingOnceTheRunIsGone) {
    timer.start(state);
    state.reset();
    EXPECT_EQ(updatesDuring(1s), 0);
}

TEST_F(MeterTimerTest, ShowsNoLoadAfterAStop) {
    timer.start(state);
    mainThread.advance(100ms);
    model.cpuLoad.set(0.5);
    timer.stop();
    EXPECT_EQ(model.cpuLoad.get(), 0.0);
}

} // namespace
