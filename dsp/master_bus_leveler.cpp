#include "dsp/master_bus_leveler.h"

#include "dsp/decibels.h"
#include "dsp/elementary.h"

namespace orvane::dsp {

namespace {

/// A bus below this RMS gets the highest gain.
constexpr double smallestRMS = 1e-9;

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
      minGain(dbToLinear(minGainDB)) {}

double MasterBusLeveler::targetDB() const noexcept {
    return linearToDB(targetRMS);
}

void MasterBusLeveler::setTargetDB(double targetDB) noexcept {
    targetRMS = dbToLinear(targetDB);
}

double MasterBusLeveler::process(double rms) noexcept {
    double desired = targetRMS / (rms > smallestRMS ? rms : smallestRMS);
    // Also catches NaN, from an infinite target and bus: it would stay in the gain for good.
    if (!(desired > minGain)) desired = minGain;
    if (desired > maxGain) desired = maxGain;
    const double c = desired < gain ? attackCoef : releaseCoef;
    gain = gain * c + (1.0 - c) * desired;
    return gain;
}

} // namespace orvane::dsp
