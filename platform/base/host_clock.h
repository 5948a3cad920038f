#pragma once

#include <cstdint>

namespace orvane::platform {

/// Turns host clock ticks into nanoseconds: ticks * numer / denom.
struct TimebaseInfo {
    std::uint32_t numer = 1;
    std::uint32_t denom = 1;

    bool operator==(const TimebaseInfo&) const = default;
};

/// The monotonic clock that durations on audio threads are measured with. A value; tests hand in a scripted
/// one.
struct HostClock {
    /// The time in ticks since some fixed moment. Any thread, real-time safe.
    std::uint64_t (*absoluteTime)() noexcept;
    TimebaseInfo timebaseInfo;

    /// The machine's monotonic clock, in nanoseconds.
    static HostClock system() noexcept;
};

} // namespace orvane::platform
