#pragma once

#include "dsp/realtime.h"

#include <cstdint>
#include <optional>

namespace orvane::platform {

/// Finds the cycles that a client has missed in the times of those that it got. The process thread's.
class FrameGaps final {
  public:
    /// Whether cycles are missing before the one that begins at `time`, in frames that wrap around, and lasts
    /// `frameCount`. Real-time safe.
    ORVANE_REALTIME bool isBefore(std::uint32_t time, std::uint32_t frameCount) noexcept {
        const bool isGap = expected && time != *expected;
        expected = time + frameCount;
        return isGap;
    }

    /// Forgets the cycles so far. While none runs.
    void reset() noexcept { expected.reset(); }

  private:
    std::optional<std::uint32_t> expected;
};

} // namespace orvane::platform
