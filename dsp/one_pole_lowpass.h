#pragma once

#include "dsp/elementary.h"
#include "dsp/realtime.h"

namespace orvane::dsp {

/// A first-order lowpass, y += a (x - y) with a = 1 - e^(-2 pi cutoff / sampleRate). Owned by one filter; one
/// thread.
struct OnePoleLowpass {
    /// Both in Hz, above 0.
    OnePoleLowpass(double cutoff, double sampleRate)
        : a(1.0 - exp(-6.283185307179586 * cutoff / sampleRate)) {}

    /// Processes one sample and returns the new output. Real-time safe.
    ORVANE_REALTIME double process(double x) noexcept {
        y += a * (x - y);
        return y;
    }

    /// Smoothing coefficient, between 0 and 1.
    double a;
    /// The last output.
    double y = 0.0;
};

} // namespace orvane::dsp
