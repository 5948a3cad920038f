#pragma once

#include <cstdint>

namespace orvane::platform {

/// Converts host clock ticks to nanoseconds: ticks * numer / denom.
struct TimebaseInfo {
    std::uint32_t numer = 1;
    std::uint32_t denom = 1;

    bool operator==(const TimebaseInfo&) const = default;
};

/// The monotonic clock for durations on audio threads. A value; tests pass a scripted one.
struct HostClock {
    /// The time in ticks since a fixed moment. Any thread, real-time safe.
    std::uint64_t (*absoluteTime)() noexcept;
    TimebaseInfo timebaseInfo;

    /// The computer's monotonic clock, in nanoseconds.
    static HostClock system() noexcept;
};

} // namespace orvane::platform
