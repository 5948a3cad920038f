#pragma once

namespace orvane::dsp {

// The transcendental functions that sound depends on. The C library picks its versions by the processor it
// runs on, and a compiler folds constants with another one; their last bits differ. These are computed in
// double-double arithmetic from additions and multiplications alone and rounded once, so that every build on
// every processor gives the same bits. They cost a fraction of a microsecond: call them per block or per
// edit, never per sample. Any thread, real-time safe. NaN gives NaN.

/// e^x.
double exp(double x) noexcept;

/// 10^x.
double exp10(double x) noexcept;

/// The sine of an angle in radians.
double sin(double x) noexcept;

/// The cosine of an angle in radians.
double cos(double x) noexcept;

} // namespace orvane::dsp
