#pragma once

#include "dsp/realtime.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace orvane::dsp {

/// Generates repeatable pink noise from 16 random rows, row r renewed every 2^r samples, and one white term
/// (the method of R. F. Voss). A value; one thread.
class PinkNoiseGenerator final {
  public:
    /// Equal seeds give equal noise; 0 selects the default seed.
    explicit PinkNoiseGenerator(std::uint32_t seed = defaultSeed) noexcept
        : rngState(seed == 0 ? defaultSeed : seed) {
        for (double& row : rowValues) {
            row = nextUniform();
            runningSum += row;
        }
    }

    /// Returns the next sample, between -1 and 1. Real-time safe.
    ORVANE_REALTIME double next() noexcept {
        const std::uint32_t old = key;
        key = (old + 1) & 0xFFFF;
        // Incrementing the counter changes a contiguous run of its lowest bits.
        std::size_t row = 0;
        for (std::uint32_t changed = key ^ old; changed != 0; changed >>= 1, ++row) {
            const double value = nextUniform();
            runningSum += value - rowValues[row];
            rowValues[row] = value;
        }
        return (runningSum + nextUniform()) / 17.0;
    }

    static constexpr std::uint32_t defaultSeed = 0x9E3779B9;

    bool operator==(const PinkNoiseGenerator&) const = default;

    /// State of the xorshift generator (G. Marsaglia, "Xorshift RNGs", 2003); never 0.
    std::uint32_t rngState;
    /// Sample counter, 16 bits.
    std::uint32_t key = 0;
    /// The rows, each between -1 and 1.
    std::array<double, 16> rowValues{};
    /// Their sum, kept up to date as they change.
    double runningSum = 0.0;

  private:
    double nextUniform() noexcept {
        rngState ^= rngState << 13;
        rngState ^= rngState >> 17;
        rngState ^= rngState << 5;
        return 2.0 * (rngState / 4294967295.0) - 1.0;
    }
};

} // namespace orvane::dsp
