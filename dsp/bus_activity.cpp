#include "dsp/bus_activity.h"

#include "dsp/smoothing.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace orvane::dsp {

namespace {

constexpr double levelMs = 30.0;
constexpr double memorySeconds = 1.5;
/// Powers above the noise floor at which talk begins and ends: 10 dB and 6 dB.
constexpr double beginRatio = 10.0;
constexpr double endRatio = 3.9810717055349722;
/// A power below this, -120 dB full scale, is never talk.
constexpr double silentPower = 1e-12;

} // namespace

BusActivity::BusActivity(double controlRate)
    : levelCoef(smoothingCoefficient(1.0 / controlRate, levelMs)),
      windowLength(
          std::max<std::size_t>(static_cast<std::size_t>(memorySeconds * controlRate) / windowCount, 1)
      ) {
    reset();
}

void BusActivity::reset() noexcept {
    power = 0.0;
    lowest.fill(std::numeric_limits<double>::max());
    lowestNow = std::numeric_limits<double>::max();
    blocksInWindow = 0;
    windowsSeen = 0;
    active = false;
}

bool BusActivity::update(double rms) noexcept {
    const double blockPower = std::isfinite(rms * rms) ? rms * rms : 0.0;
    power = power * levelCoef + blockPower * (1.0 - levelCoef);
    lowestNow = std::min(lowestNow, power);
    const double threshold = noiseFloor() * (active ? endRatio : beginRatio);
    active = windowsSeen > windowCount && power > silentPower && power > threshold;
    if (++blocksInWindow < windowLength) return active;
    lowest[windowsSeen % windowCount] = lowestNow;
    lowestNow = std::numeric_limits<double>::max();
    blocksInWindow = 0;
    ++windowsSeen;
    return active;
}

double BusActivity::noiseFloor() const noexcept {
    return std::min(*std::ranges::min_element(lowest), lowestNow);
}

double BusActivity::level() const noexcept {
    return std::sqrt(power);
}

} // namespace orvane::dsp
