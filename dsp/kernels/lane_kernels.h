#pragma once

#include "dsp/realtime.h"

#include <cstddef>
#include <span>

namespace orvane::dsp {

/// The loops over samples, in one version per instruction set. Each processes several channels at once, one
/// per vector lane, so that the operations of a channel keep their order: all versions give the same bits.
/// All are real-time safe and take blocks of `frameCount` samples; arrays indexed by channel have
/// `channelCount` entries.
struct LaneKernels {
    /// The instruction set: "baseline", "avx2" or "avx512".
    const char* name;

    /// sums[c] = the sum of the squares of channels[c], in sample order.
    void (*sumOfSquares
    )(const double* const* channels, std::size_t channelCount, std::size_t frameCount, double* sums) noexcept;

    /// The same for channels weighted by a low shelf (x - l) + l * shelfGain, where l is a one-pole lowpass
    /// with coefficient `a`. Reads the lowpass states from `states` and writes them back.
    void (*lowShelfSumOfSquares
    )(const double* const* channels, std::size_t channelCount, std::size_t frameCount, double a,
      double shelfGain, double* states, double* sums) noexcept;

    /// The same for channels weighted by a high shelf l + shelfGain * (x - l).
    void (*highShelfSumOfSquares
    )(const double* const* channels, std::size_t channelCount, std::size_t frameCount, double a,
      double shelfGain, double* states, double* sums) noexcept;

    /// outputs[c] = gains[c] * inputs[c]; sums[c] = the sum of the squares of outputs[c]. If `bus` is not
    /// null, adds every output to it in channel order.
    void (*mix
    )(const double* const* inputs, const double* gains, double* const* outputs, std::size_t channelCount,
      std::size_t frameCount, double* bus, double* sums) noexcept;

    /// `mix` with gains that run in a line: sample j has the gain from[c] + steps[c] * (j + 1).
    void (*mixRamped
    )(const double* const* inputs, const double* from, const double* steps, double* const* outputs,
      std::size_t channelCount, std::size_t frameCount, double* bus, double* sums) noexcept;

    /// Replaces each sums[c], a sum of `frameCount` squares, by its root mean; 0 if there are no frames.
    void (*rootMeans)(double* sums, std::size_t channelCount, std::size_t frameCount) noexcept;

    /// samples[i] = gain * samples[i].
    void (*scale)(double* samples, double gain, std::size_t frameCount) noexcept;

    /// sum[i] = sum[i] + gain * samples[i]; the arrays must not overlap.
    void (*addScaled)(double* sum, const double* samples, double gain, std::size_t frameCount) noexcept;

    /// `scale` and `addScaled` with a gain that runs in a line: sample i has the gain from + step * (i + 1).
    void (*scaleRamped)(double* samples, double from, double step, std::size_t frameCount) noexcept;
    void (*addRamped
    )(double* sum, const double* samples, double from, double step, std::size_t frameCount) noexcept;

    /// filtered[i] = the sum of taps[t] * samples[i + t] in the order of the taps; `samples` has frameCount +
    /// tapCount - 1 entries and must not overlap `filtered`.
    void (*filter
    )(double* filtered, const double* samples, const double* taps, std::size_t tapCount,
      std::size_t frameCount) noexcept;

    /// wide[i] = narrow[i] in double precision; NaNs and samples beyond `largestSample` become 0. Returns
    /// whether the magnitude of a sample is above `threshold`.
    bool (*widen)(double* wide, const float* narrow, std::size_t frameCount, float threshold) noexcept;

    /// narrow[i] = wide[i] rounded to single precision; values that single precision cannot hold become 0.
    /// Returns whether the magnitude of a rounded sample is above `threshold`.
    bool (*narrow)(float* narrow, const double* wide, std::size_t frameCount, float threshold) noexcept;
};

/// Returns every version that this processor can run, slowest first; never empty.
std::span<const LaneKernels* const> supportedLaneKernels() noexcept;

/// Returns the fastest version that this processor can run.
const LaneKernels& fastestLaneKernels() noexcept;

} // namespace orvane::dsp
