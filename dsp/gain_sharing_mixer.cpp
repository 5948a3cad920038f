#include "dsp/gain_sharing_mixer.h"

#include "dsp/decibels.h"
#include "dsp/elementary.h"

#include <cassert>
#include <cmath>

namespace orvane::dsp {

namespace {

/// A level, a sum or a sum of squares below this counts as zero.
constexpr double negligible = 1e-12;

/// The smoothing coefficient per step of a time constant.
double smoothingCoefficient(double dt, double timeMs) noexcept {
    return timeMs > 0.0 ? exp(-dt / (timeMs / 1000.0)) : 0.0;
}

double smoothed(double current, double target, double attackCoef, double releaseCoef) noexcept {
    const double c = current < target ? attackCoef : releaseCoef;
    return current * c + target * (1.0 - c);
}

} // namespace

GainSharingMixer::GainSharingMixer(
    std::size_t channelCount, double controlRate, double attackMs, double releaseMs, double silentRMS,
    double gainFloorDB
)
    : dt(1.0 / controlRate),
      attackCoef(smoothingCoefficient(dt, attackMs)),
      releaseCoef(smoothingCoefficient(dt, releaseMs)),
      noiseFloor(silentRMS),
      gainFloor(dbToLinear(gainFloorDB)),
      releaseTimeMs(releaseMs),
      smoothedLevel(channelCount, 0.0),
      gains(channelCount, 1.0 / static_cast<double>(channelCount)),
      eScratch(channelCount, 0.0),
      wScratch(channelCount, 0.0),
      gTargetScratch(channelCount, 0.0) {
    assert(channelCount >= 1);
}

void GainSharingMixer::setReleaseMs(double releaseMs) noexcept {
    if (releaseMs == releaseTimeMs) return;
    releaseTimeMs = releaseMs;
    releaseCoef = smoothingCoefficient(dt, releaseMs);
}

std::span<const double> GainSharingMixer::process(std::span<const double> levels) noexcept {
    assert(levels.size() == gains.size());
    followLevels(levels);
    shareActivity();
    moveGains();
    return gains;
}

void GainSharingMixer::followLevels(std::span<const double> levels) noexcept {
    // A value that is not finite would stay in the smoothed level for good.
    for (std::size_t i = 0; i < levels.size(); ++i)
        smoothedLevel[i] =
            smoothed(smoothedLevel[i], std::isfinite(levels[i]) ? levels[i] : 0.0, attackCoef, releaseCoef);
}

void GainSharingMixer::shareActivity() noexcept {
    const std::size_t n = gains.size();
    const double count = static_cast<double>(n);
    double total = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        const double excess = smoothedLevel[i] - noiseFloor;
        eScratch[i] = excess <= negligible ? negligible : excess;
        total += eScratch[i];
    }
    double sumOfSquares = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        wScratch[i] = total <= negligible ? 1.0 / count : eScratch[i] / total;
        sumOfSquares += wScratch[i] * wScratch[i];
    }
    const double scale = sumOfSquares <= negligible ? count : 1.0 / sumOfSquares;
    for (std::size_t i = 0; i < n; ++i) {
        const double target = scale * wScratch[i];
        gTargetScratch[i] = target <= gainFloor ? gainFloor : target;
    }
}

void GainSharingMixer::moveGains() noexcept {
    for (std::size_t i = 0; i < gains.size(); ++i)
        gains[i] = smoothed(gains[i], gTargetScratch[i], attackCoef, releaseCoef);
}

} // namespace orvane::dsp
