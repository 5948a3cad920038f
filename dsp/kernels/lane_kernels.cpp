#include "dsp/kernels/lane_kernels.h"

#include "dsp/kernels/instruction_sets.h"

#include <array>

namespace orvane::dsp {

namespace {

struct Supported {
    std::array<const LaneKernels*, 3> kernels{&baselineLaneKernels};
    std::size_t count = 1;

    Supported() {
#if defined(__x86_64__)
        if (__builtin_cpu_supports("avx2")) kernels[count++] = &avx2LaneKernels;
        if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq"))
            kernels[count++] = &avx512LaneKernels;
#endif
    }
};

const Supported& supported() noexcept {
    static const Supported here;
    return here;
}

} // namespace

std::span<const LaneKernels* const> supportedLaneKernels() noexcept {
    return {supported().kernels.data(), supported().count};
}

const LaneKernels& fastestLaneKernels() noexcept {
    return *supportedLaneKernels().back();
}

} // namespace orvane::dsp
