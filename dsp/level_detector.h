#pragma once

#include "dsp/realtime.h"

#include <cmath>
#include <cstddef>
#include <span>

namespace orvane::dsp {

/// Measures the level of a block.
struct LevelDetector {
    /// Returns the root mean square, summed in double precision in sample order; 0 for an empty block. Any
    /// thread, real-time safe.
    ORVANE_REALTIME static double rms(std::span<const double> samples) noexcept { return rmsOf(samples); }
    ORVANE_REALTIME static double rms(std::span<const float> samples) noexcept { return rmsOf(samples); }

    /// Returns the level of a block from the sum of its squares; 0 for an empty block. Real-time safe.
    ORVANE_REALTIME static double rms(double sumOfSquares, std::size_t frameCount) noexcept {
        return frameCount == 0 ? 0.0 : std::sqrt(sumOfSquares / static_cast<double>(frameCount));
    }

  private:
    template <class Sample>
    static double rmsOf(std::span<const Sample> samples) noexcept {
        double sum = 0.0;
        for (const Sample sample : samples)
            sum += static_cast<double>(sample) * static_cast<double>(sample);
        return rms(sum, samples.size());
    }
};

} // namespace orvane::dsp
