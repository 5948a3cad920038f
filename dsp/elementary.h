#pragma once

namespace orvane::dsp {

// The transcendental functions that the sound depends on. The C library chooses its versions by processor,
// and a compiler folds constants with another version; the last bits of their results differ. These functions
// are computed in double-double arithmetic from additions and multiplications alone and rounded once, so that
// every build gives the same bits on every processor. They cost a fraction of a microsecond: call them per
// block or per edit, never per sample. Any thread, real-time safe. NaN gives NaN.

/// e^x.
double exp(double x) noexcept;

/// 10^x.
double exp10(double x) noexcept;

/// The sine of an angle in radians.
double sin(double x) noexcept;

/// The cosine of an angle in radians.
double cos(double x) noexcept;

} // namespace orvane::dsp
