#include "dsp/automix_processor.h"
#include "dsp/decibels.h"
#include "dsp/true_peak_limiter.h"
#include "support/allocation_guard.h"
#include "support/random_blocks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <vector>

namespace {

using namespace orvane::dsp;
using orvane::test::AllocationGuard;
using orvane::test::Random;

constexpr double rate = 48000.0;
constexpr std::size_t length = 64;
constexpr std::size_t blocksPerSecond = 750;

/// Strips with a level each, as steady squares of that amplitude, and a silent reference.
class Room final {
  public:
    explicit Room(std::size_t strips, const OutputOptions& options, double targetDB = -18.0)
        : levels(strips), automix(strips + 1, rate, rate / length, targetDB), blocks(strips + 1, length) {
        std::vector<ChannelAutomixSettings> settings(strips + 1);
        settings.back().excludedFromMasterBus = true;
        automix.setSettings(settings);
        automix.setOutputOptions(options);
        automix.ensureScratch(length);
    }

    AutomixProcessor::Output run(std::size_t count = 1) {
        for (std::size_t i = 0; i < levels.size(); ++i)
            for (std::size_t frame = 0; frame < length; ++frame)
                blocks[i][frame] = frame % 2 == 0 ? levels[i] : -levels[i];
        const AllocationGuard guard;
        for (; count > 1; --count)
            automix.process(blocks, {});
        return automix.process(blocks, {});
    }

    [[nodiscard]] double gainPower() const {
        double sum = 0.0;
        for (std::size_t i = 0; i < levels.size(); ++i)
            sum += automix.currentGains()[i] * automix.currentGains()[i];
        return sum;
    }

    std::vector<double> levels;
    AutomixProcessor automix;

  private:
    ChannelBlocks<double> blocks;
};

TEST(OutputOptions, HoldAllMicrophonesAtThePowerOfOne) {
    for (const std::size_t strips : {1, 8, 48, 600}) {
        SCOPED_TRACE(testing::Message() << strips << " strips");
        const double floor = dbToLinear(-26.0);
        const double bound = std::max(1.0, static_cast<double>(strips) * floor * floor);
        Random random(strips);
        Room room(strips, {});
        std::ranges::fill(room.levels, 0.001);
        room.run(2 * blocksPerSecond);
        room.automix.setOutputOptions({.openMicrophoneLimit = true});
        double last = room.gainPower();
        for (std::size_t block = 0; block < blocksPerSecond; ++block) {
            room.run();
            // Closes in after the switch instead of stepping: at most 0.2 dB a block.
            ASSERT_GT(room.gainPower(), 0.95 * last);
            last = room.gainPower();
        }
        for (std::size_t block = 0; block < blocksPerSecond; ++block) {
            if (block % 20 == 0)
                for (double& level : room.levels)
                    level = orvane::test::oneIn(random, 4) ? 0.2 : 0.0005;
            room.run();
            ASSERT_LT(room.gainPower(), bound * 1.000001);
            for (std::size_t i = 0; i < strips; ++i)
                ASSERT_GE(
                    room.automix.currentGains()[i],
                    std::min(floor, 1.0 / static_cast<double>(strips + 1)) * 0.999999
                );
        }
    }
}

TEST(OutputOptions, OpenAVoiceWithinFiveMillisecondsAfterAnotherSpeaker) {
    for (const std::size_t strips : {8, 48}) {
        Room room(strips, {.openMicrophoneLimit = true, .fastOnset = true});
        std::ranges::fill(room.levels, 0.001);
        room.levels[0] = 0.1;
        room.run(blocksPerSecond);
        room.levels[0] = 0.001;
        room.run(blocksPerSecond / 5);
        room.levels[1] = 0.05;
        room.run(4);
        EXPECT_GT(room.automix.currentGains()[1], dbToLinear(-3.0)) << strips;
        EXPECT_LT(room.automix.currentGains()[0], dbToLinear(-3.0)) << strips;
    }
}

TEST(OutputOptions, NeverTurnUpAPauseWhateverTheRoomsNoise) {
    for (const double noiseDB : {-70.0, -45.0}) {
        SCOPED_TRACE(testing::Message() << noiseDB << " dB of noise");
        Room room(2, {.leveler = LevelerMode::hold});
        const double noise = dbToLinear(noiseDB);
        const auto second = [&room](double first, double other) {
            room.levels = {first, other};
            room.run(blocksPerSecond);
            return room.automix.currentMasterGain();
        };
        // Somebody enters a quiet room, talks below the target, pauses and shouts.
        for (int pause = 0; pause < 3; ++pause)
            ASSERT_EQ(second(noise, noise), 1.0);
        double talking = 1.0;
        for (int talk = 0; talk < 4; ++talk) {
            talking = second(dbToLinear(-25.0), noise);
            second(noise, noise);
        }
        EXPECT_GT(talking, dbToLinear(3.0));
        EXPECT_LT(talking, dbToLinear(7.1));
        const double held = room.automix.currentMasterGain();
        for (int pause = 0; pause < 4; ++pause)
            ASSERT_LE(second(noise, noise), held);
        EXPECT_NEAR(second(dbToLinear(-8.0), noise), dbToLinear(-10.0), 0.01);
        room.automix.setOutputOptions({.leveler = LevelerMode::off});
        for (int glide = 0; glide < 10; ++glide)
            second(noise, noise);
        EXPECT_EQ(room.automix.currentMasterGain(), 1.0);
    }
}

TEST(OutputOptions, RampEveryGainWithoutAStep) {
    Room room(2, {.gainRamps = true});
    room.levels = {0.5, 0.1};
    const auto edit = [&room](int block) {
        ChannelAutomixSettings settings{.muted = block % 8 < 2, .bypassed = block % 8 > 4};
        settings.trim = 0.5 + block % 3;
        room.automix.setSettings(0, settings);
        room.automix.setMasterTargetDB(block % 5 == 0 ? -40.0 : -6.0);
    };
    double last[2] = {};
    for (int block = 0; block < 200; ++block) {
        edit(block);
        const auto [outputs, master] = room.run();
        const std::span<const double> signals[2] = {outputs[0], master};
        for (std::size_t signal = 0; signal < 2; ++signal) {
            // The squares alternate in sign, so their magnitude is the gain.
            double greatest = 0.0;
            for (const double sample : signals[signal])
                greatest = std::max(greatest, std::abs(sample));
            const double range = std::max(greatest, last[signal]);
            for (const double sample : signals[signal]) {
                ASSERT_LE(std::abs(std::abs(sample) - last[signal]), range / 20.0) << block;
                last[signal] = std::abs(sample);
            }
        }
    }
}

TEST(OutputOptions, GiveTheSameBitsOnEveryInstructionSet) {
    const OutputOptions all = {LevelerMode::hold, true, true, true};
    std::vector<double> expected;
    for (const LaneKernels* kernels : supportedLaneKernels()) {
        Random random(7);
        AutomixProcessor automix(21, rate, rate / 96, -12.0, *kernels);
        TruePeakLimiter limiter(rate, *kernels);
        limiter.setCeiling(-20.0);
        automix.setOutputOptions(all);
        std::vector<double> played;
        for (int block = 0; block < 200; ++block) {
            ChannelBlocks<double> blocks(21, 96);
            for (std::size_t i = 0; i < 21; ++i)
                orvane::test::fillWithSignal(random, blocks[i]);
            const auto [outputs, master] = automix.process(blocks, {});
            std::vector<double> limited(master.begin(), master.end());
            double* const channel = limited.data();
            limiter.process({&channel, 1}, limited.size());
            played.insert(played.end(), outputs[3].begin(), outputs[3].end());
            played.insert(played.end(), limited.begin(), limited.end());
        }
        if (expected.empty()) expected = played;
        ASSERT_EQ(played, expected) << kernels->name;
    }
}

/// The highest magnitude between the samples, from 16 points an interval, by an interpolation of its own: a
/// sinc over 64 samples under a Blackman window.
double truePeak(const std::vector<double>& signal) {
    constexpr int reach = 32;
    double peak = 0.0;
    for (int at = reach; at + reach < static_cast<int>(signal.size()); ++at) {
        for (int step = 0; step < 16; ++step) {
            double sum = 0.0;
            for (int k = 1 - reach; k <= reach; ++k) {
                const double x = step / 16.0 - k;
                const double angle = std::numbers::pi * x;
                const double window =
                    0.42 + 0.5 * std::cos(angle / reach) + 0.08 * std::cos(2.0 * angle / reach);
                sum += signal[static_cast<std::size_t>(at + k)] * window
                       * (x == 0.0 ? 1.0 : std::sin(angle) / angle);
            }
            peak = std::max(peak, std::abs(sum));
        }
    }
    return peak;
}

/// Plays a signal through a limiter in blocks.
std::vector<double> limited(TruePeakLimiter& limiter, std::vector<double> signal) {
    limiter.ensureScratch(length);
    const AllocationGuard guard;
    for (std::size_t at = 0; at + length <= signal.size(); at += length) {
        double* const channel = signal.data() + at;
        limiter.process({&channel, 1}, length);
    }
    return signal;
}

TEST(TruePeakLimiter, KeepsTruePeaksBelowTheCeiling) {
    const auto tone = [](double frequency, double phase) {
        std::vector<double> signal(length * 60);
        for (std::size_t i = 0; i < signal.size(); ++i)
            // Bursts, so that the limiter attacks and releases.
            signal[i] =
                (i / 700 % 2 == 0 ? 1.8 : 0.2)
                * std::sin(2.0 * std::numbers::pi * frequency / rate * static_cast<double>(i) + phase);
        return signal;
    };
    std::vector<std::vector<double>> signals = {
        tone(12000.0, 0.785), tone(997.0, 0.0), tone(7999.0, 0.4), tone(60.0, 0.0), tone(20000.0, 0.1)};
    Random random(3);
    signals.emplace_back(length * 60);
    for (double& sample : signals.back())
        sample = orvane::test::oneIn(random, 50) ? 8.0 * orvane::test::numberBetween(random, -1.0, 1.0) : 0.1;
    for (const std::vector<double>& signal : signals) {
        TruePeakLimiter limiter(rate);
        limiter.setCeiling(-6.0);
        const double peak = truePeak(limited(limiter, signal));
        EXPECT_LT(linearToDB(peak), -5.9) << &signal - signals.data();
        EXPECT_GT(linearToDB(peak), -7.0) << &signal - signals.data();
    }
}

TEST(TruePeakLimiter, OnlyDelaysWhatIsBelowTheCeilingAndIsExactlyOffOtherwise) {
    std::vector<double> signal(length * 40);
    Random random(5);
    for (double& sample : signal)
        sample = orvane::test::numberBetween(random, -0.3, 0.3);
    TruePeakLimiter limiter(rate);
    EXPECT_EQ(limited(limiter, signal), signal);
    limiter.setCeiling(0.0);
    limited(limiter, signal);
    const auto delayed = limited(limiter, signal);
    const auto latency = static_cast<std::ptrdiff_t>(TruePeakLimiter::latencyFrames(rate));
    EXPECT_TRUE(std::equal(signal.begin(), signal.end() - latency, delayed.begin() + latency));
    limiter.setCeiling({});
    limited(limiter, signal);
    EXPECT_EQ(limited(limiter, signal), signal);
}

TEST(TruePeakLimiter, FadesWhenItIsSwitchedDuringARun) {
    // A slow ramp: a delay alone changes it little, a jump of the delay or of the gain does.
    std::vector<double> signal(length * 200);
    std::iota(signal.begin(), signal.end(), 0.0);
    for (double& sample : signal)
        sample *= 1e-4;
    TruePeakLimiter limiter(rate);
    limiter.ensureScratch(length);
    double last = 0.0;
    for (std::size_t at = 0; at < signal.size(); at += length) {
        if (at == length * 20) limiter.setCeiling(-1.0);
        if (at == length * 60) limiter.setCeiling({});
        double* const channel = signal.data() + at;
        limiter.process({&channel, 1}, length);
        for (std::size_t i = at; i < at + length; ++i) {
            ASSERT_NEAR(signal[i], last, 3e-3) << "frame " << i;
            last = signal[i];
        }
    }
}

} // namespace
