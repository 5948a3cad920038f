#pragma once

#include "dsp/channel_blocks.h"
#include "dsp/kernels/lane_kernels.h"
#include "dsp/realtime.h"
#include "dsp/sliding_minimum.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace orvane::dsp {

/// Holds the true peak of up to two signals, with one gain for both, at or below a ceiling. It detects peaks
/// on the signal oversampled four times, looks ahead by its latency so that the gain has fallen in a smooth
/// line before a peak leaves, and releases over a tenth of a second. Below the ceiling the signals are only
/// delayed; while it is off they pass untouched. Switched during a run, it fades between the two.
///
/// The control thread may set the ceiling at any time; all other state belongs to the render thread.
class TruePeakLimiter final {
  public:
    static constexpr std::size_t mostChannels = 2;

    /// `sampleRate` in Hz.
    explicit TruePeakLimiter(double sampleRate, const LaneKernels& loops = fastestLaneKernels());

    /// The delay of a limiter that is on, in frames: 1.5 ms.
    [[nodiscard]] static std::size_t latencyFrames(double sampleRate) noexcept;

    /// The ceiling in dB true peak; absent: off, as at creation. Control thread.
    void setCeiling(std::optional<double> ceilingDBTP) noexcept;

    /// Sizes the working memory for blocks of `frameCount` frames. Allocates only if they outgrow all earlier
    /// ones.
    void ensureScratch(std::size_t frameCount);

    /// Limits one block of `frameCount` samples of each channel in place, at most `mostChannels`. Real-time
    /// safe while the block length does not grow.
    ORVANE_REALTIME void process(std::span<double* const> channels, std::size_t frameCount) noexcept;

    /// The lowest gain of the last block, linear; 1 while nothing is limited. Real-time safe.
    [[nodiscard]] double lowestGain() const noexcept { return lowest; }

  private:
    static constexpr std::size_t phaseCount = 3;

    void reset() noexcept;
    void feed(std::span<double* const> channels, std::size_t frameCount) noexcept;
    [[nodiscard]] bool
    mayExceed(std::size_t channelCount, std::size_t frameCount, double ceiling) const noexcept;
    void detectPeaks(std::size_t channelCount, std::size_t frameCount) noexcept;
    void computeGains(std::size_t frameCount, double ceiling) noexcept;
    [[nodiscard]] double nextGain(double required) noexcept;
    void play(std::span<double* const> channels, std::size_t frameCount, double fadeStep) noexcept;
    void keepHistory(std::size_t frameCount) noexcept;

    const LaneKernels& kernels;
    std::size_t delay;
    double fadeFrames;
    double releaseCoef;
    /// Interpolate a quarter, a half and three quarters of the way between two samples.
    std::array<std::vector<double>, phaseCount> taps;
    /// How far interpolated samples can exceed the samples around them.
    double worstOvershoot = 1.0;

    /// Linear; infinite while the limiter is off.
    std::atomic<double> ceilingSetting;

    /// The last `delay` samples of each channel and, after them, the block.
    std::array<std::vector<double>, mostChannels> lines;
    std::vector<double> interpolated;
    /// The peaks, and then the gains, of the block.
    std::vector<double> gains;
    std::size_t scratchFrames = 0;

    SlidingMinimum heldMinimum;
    double released = 1.0;
    /// The last gains before smoothing, their sum, and how many of them are below 1.
    std::vector<double> smoothing;
    std::size_t smoothingAt = 0;
    double smoothingSum;
    std::size_t reducing = 0;

    bool hasStarted = false;
    /// 0 while the signals pass untouched, 1 while they are limited.
    double fade = 0.0;
    /// Frames fed since the limiter was switched on, up to `delay`.
    std::size_t fedFrames = 0;
    std::size_t fedChannels = 0;
    double lowest = 1.0;
};

} // namespace orvane::dsp
