#define ORVANE_LANES 4
#include "dsp/kernels/instruction_sets.h"
#include "dsp/kernels/lane_kernels_impl.h"

namespace orvane::dsp {

const LaneKernels avx2LaneKernels = kernelsNamed("avx2");

} // namespace orvane::dsp
