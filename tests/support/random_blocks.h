#pragma once

#include "dsp/channel_automix_settings.h"

#include <cstddef>
#include <random>
#include <span>

namespace orvane::test {

/// The generator of all random tests: equal seeds give equal tests.
using Random = std::mt19937_64;

/// Returns a number from `low` to `high`.
inline double numberBetween(Random& random, double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random);
}

/// Returns a whole number from `low` to `high`, both included.
inline long wholeBetween(Random& random, long low, long high) {
    return std::uniform_int_distribution<long>(low, high)(random);
}

/// Returns true once in `times` on average.
inline bool oneIn(Random& random, long times) {
    return wholeBetween(random, 1, times) == 1;
}

/// Noise at a random level, sometimes silence.
template <class Sample>
void fillWithSignal(Random& random, std::span<Sample> block) {
    const double level = oneIn(random, 5) ? 0.0 : numberBetween(random, 1e-4, 1.0);
    for (Sample& sample : block)
        sample = static_cast<Sample>(numberBetween(random, -level, level));
}

/// Random settings, including a trim of 0 or above unity.
inline dsp::ChannelAutomixSettings randomSettings(Random& random) {
    return {
        .genderMode = dsp::allGenderTriggerModes[static_cast<std::size_t>(wholeBetween(random, 0, 2))],
        .muted = oneIn(random, 6),
        .trim = oneIn(random, 8) ? 0.0 : numberBetween(random, 0.0, 2.0),
        .bypassed = oneIn(random, 6),
        .vocalRole = dsp::allVocalRoles[static_cast<std::size_t>(wholeBetween(random, 0, 2))],
        .excludedFromMasterBus = oneIn(random, 8)};
}

} // namespace orvane::test
