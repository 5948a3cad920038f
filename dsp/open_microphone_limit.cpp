#include "dsp/open_microphone_limit.h"

#include "dsp/smoothing.h"

#include <algorithm>
#include <cmath>

namespace orvane::dsp {

namespace {

constexpr double closingMs = 30.0;

double powerOf(std::span<const double> gains) noexcept {
    double sum = 0.0;
    for (const double gain : gains)
        sum += gain * gain;
    return sum;
}

} // namespace

OpenMicrophoneLimit::OpenMicrophoneLimit(double controlRate, double gainFloor)
    : floorPower(gainFloor * gainFloor), closingCoef(smoothingCoefficient(1.0 / controlRate, closingMs)) {}

void OpenMicrophoneLimit::setOn(bool isOn, std::span<const double> gains) noexcept {
    if (isOn && !on) bound = std::max(powerOf(gains), 1.0);
    on = isOn;
}

void OpenMicrophoneLimit::limitTargets(std::span<double> targets) const noexcept {
    const double power = powerOf(targets);
    if (power <= 1.0) return;
    // Only what is above the floors shrinks, so that none falls below: all of it by the same factor.
    const double floors = static_cast<double>(targets.size()) * floorPower;
    const double above = power - floors;
    const double share = above > 0.0 ? std::max(1.0 - floors, 0.0) / above : 0.0;
    for (double& target : targets)
        target = std::sqrt(floorPower + std::max(target * target - floorPower, 0.0) * share);
}

void OpenMicrophoneLimit::limitGains(std::span<double> gains, std::span<const double> targets) noexcept {
    bound = std::max(bound * closingCoef, 1.0);
    const double power = powerOf(gains);
    if (power <= bound) return;
    double closing = 0.0;
    for (std::size_t i = 0; i < gains.size(); ++i)
        closing += std::max(gains[i] * gains[i] - targets[i] * targets[i], 0.0);
    if (closing <= 0.0) return;
    const double kept = std::max(1.0 - (power - bound) / closing, 0.0);
    for (std::size_t i = 0; i < gains.size(); ++i) {
        const double target = targets[i] * targets[i];
        const double excess = gains[i] * gains[i] - target;
        if (excess > 0.0) gains[i] = std::sqrt(target + kept * excess);
    }
}

} // namespace orvane::dsp
