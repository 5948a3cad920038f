#pragma once

namespace orvane::dsp {

/// Returns the linear factor of a level in dB: 10^(dB / 20). Neither argument nor result is clamped. Any
/// thread, real-time safe.
double dbToLinear(double dB) noexcept;

/// Returns the level in dB of a linear factor: 20 log10(max(x, 1e-12)), never below -240 dB. Any thread,
/// real-time safe.
double linearToDB(double x) noexcept;

} // namespace orvane::dsp
