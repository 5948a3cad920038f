#define ORVANE_LANES 2
#include "dsp/kernels/instruction_sets.h"
#include "dsp/kernels/lane_kernels_impl.h"

namespace orvane::dsp {

const LaneKernels baselineLaneKernels = kernelsNamed("baseline");

} // namespace orvane::dsp
