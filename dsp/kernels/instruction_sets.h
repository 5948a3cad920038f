#pragma once

#include "dsp/kernels/lane_kernels.h"

namespace orvane::dsp {

/// The kernels of each instruction set, each defined in a source file of its own. Those of instruction sets
/// that the target architecture lacks are not defined.
extern const LaneKernels baselineLaneKernels;
extern const LaneKernels avx2LaneKernels;
extern const LaneKernels avx512LaneKernels;

} // namespace orvane::dsp
