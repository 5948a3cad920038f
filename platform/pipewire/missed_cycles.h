#pragma once

#include "dsp/realtime.h"

#include <algorithm>
#include <cstdint>

namespace orvane::platform::pipewire {

/// Counts missed cycles by the clock of the graph. One thread.
class MissedCycles final {
  public:
    /// The cycles ignored after a reset or another change: the clock jumps while a node joins the graph.
    static constexpr unsigned cyclesUntilSettled = 16;

    /// One cycle, as the graph describes it.
    struct Cycle {
        std::uint32_t clock = 0;
        /// In frames per second.
        std::uint32_t rate = 0;
        /// In frames.
        std::uint64_t position = 0;
        std::uint64_t duration = 0;
        /// How long ago the graph began it, in nanoseconds.
        std::int64_t age = 0;
    };

    /// Returns how many cycles are missing before this one, or 1 if it comes so late itself that the next one
    /// is due. Real-time safe.
    ORVANE_REALTIME std::uint32_t before(const Cycle& cycle) noexcept {
        const bool isSame =
            cycle.clock == last.clock && cycle.rate == last.rate && cycle.duration == last.duration;
        if (!isSame) cyclesLeft = cyclesUntilSettled;
        const auto gap = static_cast<std::int64_t>(cycle.position - last.position - last.duration);
        last = cycle;
        if (cyclesLeft > 0) {
            --cyclesLeft;
            return 0;
        }
        const auto duration = static_cast<std::int64_t>(std::max<std::uint64_t>(cycle.duration, 1));
        const bool isLate = cycle.age * cycle.rate > duration * nanosecondsPerSecond;
        return gap >= duration ? static_cast<std::uint32_t>(gap / duration) : isLate ? 1 : 0;
    }

    /// Forgets the cycles so far. Real-time safe.
    ORVANE_REALTIME void reset() noexcept { last = {}; }

  private:
    static constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;

    unsigned cyclesLeft = cyclesUntilSettled;
    Cycle last;
};

} // namespace orvane::platform::pipewire
