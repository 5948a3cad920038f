#include "platform/base/host_clock.h"

#include <ctime>

namespace orvane::platform {

namespace {

std::uint64_t monotonicNanoseconds() noexcept {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::uint64_t>(now.tv_sec) * 1'000'000'000U + static_cast<std::uint64_t>(now.tv_nsec);
}

} // namespace

HostClock HostClock::system() noexcept {
    return {monotonicNanoseconds, {1, 1}};
}

} // namespace orvane::platform
