#include "dsp/true_peak_limiter.h"

#include "dsp/decibels.h"
#include "dsp/elementary.h"
#include "dsp/smoothing.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <limits>
#include <numbers>

namespace orvane::dsp {

namespace {

constexpr double lookAheadSeconds = 0.0015;
constexpr double releaseMs = 100.0;
constexpr double fadeSeconds = 0.01;
/// Samples on either side of the interval that an interpolated peak lies in.
constexpr std::size_t halfTaps = 12;
constexpr std::size_t tapCount = 2 * halfTaps;
/// A gain that is released to within this of 1 becomes 1.
constexpr double inaudibleStep = 1e-6;
/// In dB, how far detected peaks stay below the ceiling: with four points per sample, a tone of 20 kHz can be
/// 0.47 dB higher between them.
constexpr double marginDB = 0.4;
constexpr double off = std::numeric_limits<double>::infinity();

/// A windowed sinc that reads the signal at `fraction` of the way between the middle two of its samples. The
/// window is a raised cosine; the sum of the taps is 1.
std::vector<double> interpolator(double fraction) {
    std::vector<double> taps(tapCount);
    double sum = 0.0;
    for (std::size_t i = 0; i < tapCount; ++i) {
        const double x = static_cast<double>(i) - static_cast<double>(halfTaps - 1) - fraction;
        const double angle = std::numbers::pi * x;
        const double window = 0.5 + 0.5 * cos(angle / static_cast<double>(halfTaps));
        taps[i] = window * sin(angle) / angle;
        sum += taps[i];
    }
    for (double& tap : taps)
        tap /= sum;
    return taps;
}

double magnitudeSum(const std::vector<double>& taps) {
    double sum = 0.0;
    for (const double tap : taps)
        sum += std::abs(tap);
    return sum;
}

} // namespace

std::size_t TruePeakLimiter::latencyFrames(double sampleRate) noexcept {
    return std::max(static_cast<std::size_t>(lookAheadSeconds * sampleRate), tapCount);
}

// The gain of a sample is the mean of `smoothing.size()` held minima. All of them must have seen the peaks on
// both sides of the sample, and the later peak is known `halfTaps` samples after it.
TruePeakLimiter::TruePeakLimiter(double sampleRate, const LaneKernels& loops)
    : kernels(loops),
      delay(latencyFrames(sampleRate)),
      fadeFrames(fadeSeconds * sampleRate),
      releaseCoef(smoothingCoefficient(1.0 / sampleRate, releaseMs)),
      taps{interpolator(0.25), interpolator(0.5), interpolator(0.75)},
      ceilingSetting(off),
      heldMinimum(delay - halfTaps + 2),
      smoothing(delay - halfTaps + 1, 1.0),
      smoothingSum(static_cast<double>(smoothing.size())) {
    for (const std::vector<double>& phase : taps)
        worstOvershoot = std::max(worstOvershoot, magnitudeSum(phase));
    ensureScratch(0);
}

void TruePeakLimiter::setCeiling(std::optional<double> ceilingDBTP) noexcept {
    ceilingSetting.store(ceilingDBTP ? dbToLinear(*ceilingDBTP - marginDB) : off, std::memory_order_relaxed);
}

void TruePeakLimiter::ensureScratch(std::size_t frameCount) {
    if (frameCount <= scratchFrames && !lines.front().empty()) return;
    scratchFrames = frameCount;
    for (std::vector<double>& line : lines)
        line.resize(delay + frameCount, 0.0);
    interpolated.resize(frameCount);
    gains.resize(frameCount);
}

void TruePeakLimiter::process(std::span<double* const> channels, std::size_t frameCount) noexcept {
    assert(channels.size() <= mostChannels);
    ensureScratch(frameCount);
    const double ceiling = ceilingSetting.load(std::memory_order_relaxed);
    const bool isOn = ceiling != off;
    if (!hasStarted) {
        hasStarted = true;
        fade = isOn ? 1.0 : 0.0;
        fedFrames = isOn ? delay : 0;
    }
    lowest = 1.0;
    if (!isOn && fade == 0.0) return;

    if (isOn && fade == 0.0 && fedFrames == 0) reset();
    feed(channels, frameCount);
    if (mayExceed(channels.size(), frameCount, ceiling))
        detectPeaks(channels.size(), frameCount);
    else
        std::fill_n(gains.begin(), frameCount, 0.0);
    computeGains(frameCount, ceiling);
    const bool isFull = fedFrames == delay;
    play(channels, frameCount, !isFull ? 0.0 : (isOn ? 1.0 : -1.0) / fadeFrames);
    keepHistory(frameCount);
    fedFrames = isOn ? std::min(delay, fedFrames + frameCount) : fade > 0.0 ? fedFrames : 0;
}

void TruePeakLimiter::reset() noexcept {
    for (std::vector<double>& line : lines)
        std::ranges::fill(line, 0.0);
    heldMinimum.clear();
    released = 1.0;
    std::ranges::fill(smoothing, 1.0);
    smoothingSum = static_cast<double>(smoothing.size());
    reducing = 0;
}

void TruePeakLimiter::feed(std::span<double* const> channels, std::size_t frameCount) noexcept {
    for (std::size_t c = 0; c < channels.size(); ++c)
        std::copy_n(channels[c], frameCount, lines[c].begin() + static_cast<std::ptrdiff_t>(delay));
    // A signal that is no longer there must not be played when another one takes its place.
    for (std::size_t c = channels.size(); c < fedChannels; ++c)
        std::ranges::fill(lines[c], 0.0);
    fedChannels = channels.size();
}

/// Whether an interpolated peak could be above the ceiling.
bool TruePeakLimiter::mayExceed(std::size_t channelCount, std::size_t frameCount, double ceiling)
    const noexcept {
    double highest = 0.0;
    for (std::size_t c = 0; c < channelCount; ++c)
        for (std::size_t i = delay - tapCount + 1; i < delay + frameCount; ++i)
            highest = std::max(highest, std::abs(lines[c][i]));
    return highest * worstOvershoot > ceiling;
}

void TruePeakLimiter::detectPeaks(std::size_t channelCount, std::size_t frameCount) noexcept {
    std::fill_n(gains.begin(), frameCount, 0.0);
    for (std::size_t c = 0; c < channelCount; ++c) {
        const double* const first = lines[c].data() + delay - tapCount + 1;
        for (std::size_t i = 0; i < frameCount; ++i)
            gains[i] = std::max(gains[i], std::abs(first[i + halfTaps]));
        for (const std::vector<double>& phase : taps) {
            kernels.filter(interpolated.data(), first, phase.data(), tapCount, frameCount);
            for (std::size_t i = 0; i < frameCount; ++i)
                gains[i] = std::max(gains[i], std::abs(interpolated[i]));
        }
    }
}

void TruePeakLimiter::computeGains(std::size_t frameCount, double ceiling) noexcept {
    for (std::size_t i = 0; i < frameCount; ++i) {
        gains[i] = nextGain(gains[i] > ceiling ? ceiling / gains[i] : 1.0);
        lowest = std::min(lowest, gains[i]);
    }
}

double TruePeakLimiter::nextGain(double required) noexcept {
    const double held = heldMinimum.add(required);
    released = held < released ? held : held + (released - held) * releaseCoef;
    if (released > 1.0 - inaudibleStep) released = 1.0;

    double& oldest = smoothing[smoothingAt];
    smoothingAt = smoothingAt + 1 < smoothing.size() ? smoothingAt + 1 : 0;
    if (oldest < 1.0) --reducing;
    if (released < 1.0) ++reducing;
    smoothingSum += released - oldest;
    oldest = released;
    const double length = static_cast<double>(smoothing.size());
    // Rounding errors of the sum end with every pause of the limiting.
    if (reducing == 0) smoothingSum = length;
    return std::min(smoothingSum / length, 1.0);
}

void TruePeakLimiter::play(
    std::span<double* const> channels, std::size_t frameCount, double fadeStep
) noexcept {
    const double start = fade;
    for (std::size_t c = 0; c < channels.size(); ++c) {
        fade = start;
        for (std::size_t i = 0; i < frameCount; ++i) {
            const double limited = gains[i] * lines[c][i];
            fade = std::clamp(fade + fadeStep, 0.0, 1.0);
            channels[c][i] = fade == 1.0 ? limited : channels[c][i] + fade * (limited - channels[c][i]);
        }
    }
}

void TruePeakLimiter::keepHistory(std::size_t frameCount) noexcept {
    for (std::size_t c = 0; c < fedChannels; ++c)
        std::copy_n(lines[c].begin() + static_cast<std::ptrdiff_t>(frameCount), delay, lines[c].begin());
}

} // namespace orvane::dsp
