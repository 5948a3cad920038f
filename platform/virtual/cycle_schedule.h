#pragma once

#include "dsp/realtime.h"

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace orvane::platform::virtual_devices {

/// The due times of a stream's cycles. Each follows from the start and the number of frames before it at the
/// device's rate, so that errors do not accumulate however long the stream runs. One thread, real-time safe.
class CycleSchedule final {
  public:
    /// `framesPerSecond`: the rate of the device's clock. The first cycle is due at `startTime`.
    ORVANE_REALTIME CycleSchedule(double framesPerSecond, std::chrono::nanoseconds startTime) noexcept
        : rate(framesPerSecond), start(startTime) {}

    /// When the next cycle is due.
    ORVANE_REALTIME [[nodiscard]] std::chrono::nanoseconds due() const noexcept;

    /// Whether the next cycle, of `frameCount` frames, is more than its own duration late at `now`.
    ORVANE_REALTIME [[nodiscard]] bool
    isLate(std::size_t frameCount, std::chrono::nanoseconds now) const noexcept;

    /// Moves on to the cycle after one of `frameCount` frames.
    ORVANE_REALTIME void advance(std::size_t frameCount) noexcept { framesDone += frameCount; }

    /// Restarts with a next cycle that is due at `now`.
    ORVANE_REALTIME void restart(std::chrono::nanoseconds now) noexcept;

  private:
    [[nodiscard]] std::chrono::nanoseconds durationOf(std::uint64_t frameCount) const noexcept;

    double rate;
    std::chrono::nanoseconds start;
    std::uint64_t framesDone = 0;
};

} // namespace orvane::platform::virtual_devices
