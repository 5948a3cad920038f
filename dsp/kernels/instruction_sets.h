#pragma once

#include "dsp/kernels/lane_kernels.h"

namespace orvane::dsp {

/// The kernels of each instruction set, defined in a source of its own; those of sets that the build's
/// architecture does not have are not there.
extern const LaneKernels baselineLaneKernels;
extern const LaneKernels avx2LaneKernels;
extern const LaneKernels avx512LaneKernels;

} // namespace orvane::dsp
