#include "dsp/master_bus_leveler.h"

#include "dsp/decibels.h"
#include "dsp/elementary.h"

#include <algorithm>
#include <cmath>

namespace orvane::dsp {

namespace {

/// A bus below this RMS gets the highest gain.
constexpr double smallestRMS = 1e-9;
/// How fast a held gain rises during talk.
constexpr double heldRiseDBPerSecond = 2.0;
/// Closer to unity than this, a gain that is switched off becomes exactly 1.
constexpr double inaudibleStep = 1e-6;

double smoothingCoefficient(double controlRate, double timeMs) noexcept {
    const double dt = 1.0 / controlRate;
    return exp(-dt / (timeMs / 1000.0));
}

} // namespace

MasterBusLeveler::MasterBusLeveler(
    double targetDB, double controlRate, double attackMs, double releaseMs, double maxGainDB, double minGainDB
)
    : targetRMS(dbToLinear(targetDB)),
      attackCoef(smoothingCoefficient(controlRate, attackMs)),
      releaseCoef(smoothingCoefficient(controlRate, releaseMs)),
      maxGain(dbToLinear(maxGainDB)),
      minGain(dbToLinear(minGainDB)),
      slowRise(dbToLinear(heldRiseDBPerSecond / controlRate)),
      activity(controlRate) {}

double MasterBusLeveler::targetDB() const noexcept {
    return linearToDB(targetRMS);
}

void MasterBusLeveler::setTargetDB(double targetDB) noexcept {
    targetRMS = dbToLinear(targetDB);
}

void MasterBusLeveler::setMode(LevelerMode mode) noexcept {
    if (mode == levelerMode) return;
    levelerMode = mode;
    activity.reset();
}

double MasterBusLeveler::process(double rms) noexcept {
    switch (levelerMode) {
    case LevelerMode::follow:
        follow(desiredGain(rms));
        break;
    case LevelerMode::hold:
        hold(rms);
        break;
    case LevelerMode::off:
        follow(1.0);
        if (std::abs(gain - 1.0) < inaudibleStep) gain = 1.0;
        break;
    }
    return gain;
}

double MasterBusLeveler::desiredGain(double rms) const noexcept {
    double desired = targetRMS / (rms > smallestRMS ? rms : smallestRMS);
    // Also catches NaN, from an infinite target and bus: it would stay in the gain for good.
    if (!(desired > minGain)) desired = minGain;
    if (desired > maxGain) desired = maxGain;
    return desired;
}

void MasterBusLeveler::follow(double desired) noexcept {
    const double c = desired < gain ? attackCoef : releaseCoef;
    gain = gain * c + (1.0 - c) * desired;
}

void MasterBusLeveler::hold(double rms) noexcept {
    const bool someoneTalks = activity.update(rms);
    const double desired = desiredGain(activity.level());
    if (desired < gain)
        follow(desired);
    else if (someoneTalks)
        gain = std::min(desired, gain * slowRise);
}

} // namespace orvane::dsp
