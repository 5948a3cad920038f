#pragma once

#include "dsp/realtime.h"

#include <cstdint>

namespace orvane::platform::jack {

/// Detects missed cycles from the times of those that a client received. Process thread.
class FrameGaps final {
  public:
    /// The cycles ignored after a reset: PipeWire's time jumps while a client joins the graph.
    static constexpr unsigned cyclesUntilSettled = 16;

    /// Returns whether cycles are missing before the one that starts at `time`, in frames that wrap around,
    /// and lasts `frameCount`. A change of the length is ignored too: PipeWire's time jumps there. Real-time
    /// safe.
    ORVANE_REALTIME bool isBefore(std::uint32_t time, std::uint32_t frameCount) noexcept {
        const bool isJudged = cyclesLeft == 0 && frameCount == lastFrameCount;
        const bool isLate = static_cast<std::int32_t>(time - expectedTime) > 0;
        if (cyclesLeft > 0) --cyclesLeft;
        expectedTime = time + frameCount;
        lastFrameCount = frameCount;
        return isJudged && isLate;
    }

    /// Forgets the cycles so far. Must not be called while cycles run.
    void reset() noexcept { cyclesLeft = cyclesUntilSettled; }

  private:
    unsigned cyclesLeft = cyclesUntilSettled;
    std::uint32_t expectedTime = 0;
    std::uint32_t lastFrameCount = 0;
};

} // namespace orvane::platform::jack
