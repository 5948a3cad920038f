#include "dsp/gain_sharing_mixer.h"

#include "dsp/decibels.h"
#include "dsp/smoothing.h"

#include <algorithm>
#include <cassert>
#include <cmath>

namespace orvane::dsp {

namespace {

/// A level, a sum or a sum of squares below this counts as zero.
constexpr double negligible = 1e-12;
/// The attack of levels and gains if voices are to be open at once.
constexpr double fastAttackMs = 1.0;

} // namespace

GainSharingMixer::GainSharingMixer(
    std::size_t channelCount, double controlRate, double attackMs, double releaseMs, double silentRMS,
    double gainFloorDB
)
    : dt(1.0 / controlRate),
      slowAttackCoef(smoothingCoefficient(dt, attackMs)),
      attackCoef(slowAttackCoef),
      releaseCoef(smoothingCoefficient(dt, releaseMs)),
      noiseFloor(silentRMS),
      gainFloor(dbToLinear(gainFloorDB)),
      releaseTimeMs(releaseMs),
      smoothedLevel(channelCount, 0.0),
      gains(channelCount, 1.0 / static_cast<double>(channelCount)),
      eScratch(channelCount, 0.0),
      wScratch(channelCount, 0.0),
      gTargetScratch(channelCount, 0.0),
      onsets(channelCount, controlRate),
      openMicrophones(controlRate, gainFloor) {
    assert(channelCount >= 1);
}

void GainSharingMixer::setReleaseMs(double releaseMs) noexcept {
    if (releaseMs == releaseTimeMs) return;
    releaseTimeMs = releaseMs;
    releaseCoef = smoothingCoefficient(dt, releaseMs);
}

void GainSharingMixer::setFastOnset(bool isFast) noexcept {
    if (isFast == fastOnset) return;
    fastOnset = isFast;
    attackCoef = isFast ? smoothingCoefficient(dt, fastAttackMs) : slowAttackCoef;
}

void GainSharingMixer::setOpenMicrophoneLimit(std::size_t limitedCount) noexcept {
    assert(limitedCount <= gains.size());
    if (limitedCount == limitedChannels) return;
    limitedChannels = limitedCount;
    openMicrophones.setOn(limitedCount > 0, std::span(gains).first(limitedCount));
}

std::span<const double> GainSharingMixer::process(std::span<const double> levels) noexcept {
    assert(levels.size() == gains.size());
    followLevels(levels);
    if (fastOnset) handOver(levels);
    shareActivity();
    const std::span<double> targets = std::span(gTargetScratch).first(limitedChannels);
    openMicrophones.limitTargets(targets);
    moveGains();
    if (openMicrophones.isOn()) openMicrophones.limitGains(std::span(gains).first(limitedChannels), targets);
    return gains;
}

void GainSharingMixer::followLevels(std::span<const double> levels) noexcept {
    // A value that is not finite would stay in the smoothed level for good.
    for (std::size_t i = 0; i < levels.size(); ++i)
        smoothedLevel[i] =
            smoothed(smoothedLevel[i], std::isfinite(levels[i]) ? levels[i] : 0.0, attackCoef, releaseCoef);
}

void GainSharingMixer::handOver(std::span<const double> levels) noexcept {
    const auto beginning = onsets.update(levels);
    if (!beginning) return;
    for (std::size_t i = 0; i < smoothedLevel.size(); ++i)
        smoothedLevel[i] = std::min(smoothedLevel[i], onsets.recentLevels()[i]);
    smoothedLevel[*beginning] = std::max(smoothedLevel[*beginning], onsets.recentLevels()[*beginning]);
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
