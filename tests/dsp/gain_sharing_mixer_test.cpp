#include "dsp/gain_sharing_mixer.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using orvane::dsp::GainSharingMixer;

constexpr double controlRate = 48000.0 / 256.0;
constexpr double floorGain = 0.05011872336272722;

GainSharingMixer mixerOf(std::size_t channels) {
    return {channels, controlRate, 15.0, 400.0, 1e-6, -26.0};
}

std::vector<double> settledGains(const std::vector<double>& levels) {
    GainSharingMixer mixer = mixerOf(levels.size());
    for (int block = 0; block < 20000; ++block)
        mixer.process(levels);
    return {mixer.smoothedGain().begin(), mixer.smoothedGain().end()};
}

TEST(GainSharingMixer, SettlesAtTheShares) {
    using Values = std::vector<double>;
    const double above = 1e-6;
    const std::tuple<const char*, Values, Values> gainsByLevels[] = {
        {"one channel", {0.3}, {1.0}},
        {"silence opens everybody", {0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}},
        {"one talks", {0.1, 0.0, 0.0}, {1.0, floorGain, floorGain}},
        {"equals share", {0.1, 0.1, 0.0}, {1.0, 1.0, floorGain}},
        {"louder", {0.2 + above, 0.1 + above, 0.0, 0.0}, {1.2, 0.6, floorGain, floorGain}},
        {"what is no level is silence", {0.1, std::nan(""), HUGE_VAL}, {1.0, floorGain, floorGain}},
        {"below the noise floor is silence", {9e-7, 5e-7}, {1.0, 1.0}}};
    for (const auto& [what, levels, expected] : gainsByLevels) {
        const Values gains = settledGains(levels);
        for (std::size_t i = 0; i < gains.size(); ++i)
            EXPECT_NEAR(gains[i], expected[i], 1e-8) << what << ", channel " << i;
    }
}

} // namespace
