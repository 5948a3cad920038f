#pragma once

#include "dsp/realtime.h"

namespace orvane::dsp {

// What is beyond these bounds, or not a number at all, is not sound and counts as silence wherever it could
// get in: in a level, a filter or a gain it would stay for minutes or for ever. Up to them nothing is
// clipped, and nothing made of samples within them overflows in double precision.

/// The largest sample: what one of 32 bits is that nobody has scaled, 187 dB above full scale.
inline constexpr float largestSample = 2147483648.0F;

/// The largest linear gain of a channel.
inline constexpr double largestGain = 1e100;

/// `value`, or 0 where it is no number or further than `largest` from 0. Any thread, real-time safe.
template <class Value>
ORVANE_REALTIME constexpr Value orSilence(Value value, Value largest) noexcept {
    return value >= -largest && value <= largest ? value : Value{0};
}

} // namespace orvane::dsp
