#pragma once

#include "dsp/realtime.h"

namespace orvane::dsp {

// Samples beyond these bounds, and NaNs, count as silence wherever they could enter: in a level, a filter or
// a gain they would stay for minutes or for ever. Samples within them are never clipped, and nothing computed
// from them overflows in double precision.

/// The largest sample: the full scale of unscaled 32-bit samples, 187 dB above full scale.
inline constexpr float largestSample = 2147483648.0F;

/// The largest linear gain of a channel.
inline constexpr double largestGain = 1e100;

/// Returns `value`, or 0 if it is NaN or further than `largest` from 0. Any thread, real-time safe.
template <class Value>
ORVANE_REALTIME constexpr Value orSilence(Value value, Value largest) noexcept {
    return value >= -largest && value <= largest ? value : Value{0};
}

} // namespace orvane::dsp
