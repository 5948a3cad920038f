#include "dsp/onset_detector.h"

#include "dsp/smoothing.h"

#include <algorithm>
#include <cmath>

namespace orvane::dsp {

namespace {

constexpr double recentAttackMs = 1.0;
constexpr double recentReleaseMs = 30.0;
constexpr double pastAttackMs = 15.0;
constexpr double pastReleaseMs = 400.0;
/// How far the recent level is above the past one when a voice begins: 3.5 dB, which the noise of a room does
/// not reach.
constexpr double onsetRatio = 1.5;

} // namespace

OnsetDetector::OnsetDetector(std::size_t channelCount, double controlRate)
    : recentAttack(smoothingCoefficient(1.0 / controlRate, recentAttackMs)),
      recentRelease(smoothingCoefficient(1.0 / controlRate, recentReleaseMs)),
      pastAttack(smoothingCoefficient(1.0 / controlRate, pastAttackMs)),
      pastRelease(smoothingCoefficient(1.0 / controlRate, pastReleaseMs)),
      recent(channelCount, 0.0),
      past(channelCount, 0.0) {}

std::optional<std::size_t> OnsetDetector::update(std::span<const double> levels) noexcept {
    const auto level = [levels](std::size_t i) { return std::isfinite(levels[i]) ? levels[i] : 0.0; };
    for (std::size_t i = 0; i < recent.size(); ++i)
        recent[i] = smoothed(recent[i], level(i), recentAttack, recentRelease);
    const auto loudest = static_cast<std::size_t>(std::ranges::max_element(recent) - recent.begin());
    const bool isOnset = recent[loudest] > onsetRatio * past[loudest];
    for (std::size_t i = 0; i < past.size(); ++i)
        past[i] = smoothed(past[i], level(i), pastAttack, pastRelease);
    return isOnset ? std::optional(loudest) : std::nullopt;
}

} // namespace orvane::dsp
