#pragma once

#include "dsp/elementary.h"
#include "dsp/realtime.h"

namespace orvane::dsp {

/// Returns the factor by which one step of `seconds` shrinks the distance to a target, for a time constant in
/// ms; 0, a jump, if that is 0 or less. Real-time safe.
inline double smoothingCoefficient(double seconds, double timeMs) noexcept {
    return timeMs > 0.0 ? exp(-seconds / (timeMs / 1000.0)) : 0.0;
}

/// Returns `current` moved one step towards `target`; `rising` and `falling` are smoothing coefficients.
/// Real-time safe.
ORVANE_REALTIME inline double
smoothed(double current, double target, double rising, double falling) noexcept {
    const double c = current < target ? rising : falling;
    return current * c + target * (1.0 - c);
}

} // namespace orvane::dsp
