#include "dsp/decibels.h"

#include "dsp/elementary.h"

#include <algorithm>
#include <cmath>

namespace orvane::dsp {

namespace {
constexpr double smallestLevel = 1e-12;
}

double dbToLinear(double dB) noexcept {
    return exp10(dB / 20.0);
}

double linearToDB(double x) noexcept {
    return 20.0 * std::log10(std::max(x, smallestLevel));
}

} // namespace orvane::dsp
