#define ORVANE_LANES 8
#include "dsp/kernels/instruction_sets.h"
#include "dsp/kernels/lane_kernels_impl.h"

namespace orvane::dsp {

const LaneKernels avx512LaneKernels = kernelsNamed("avx512");

} // namespace orvane::dsp
