#pragma once

#include "histogram.h"

#include "dsp/realtime.h"

#include <cstddef>
#include <cstdint>

namespace orvane::bench {

/// The start and end of every cycle of a device, and the causes of late ones. Filled by the I/O thread, read
/// after it has ended.
class CycleTimes final {
  public:
    /// Cycles that ended after the next was due, by cause; if there are several, the first in this list.
    struct Misses {
        /// Our code computed for longer than the period.
        std::uint64_t computed = 0;
        /// Our code yielded the processor during the cycle, as a thread does that waits for a lock.
        std::uint64_t waited = 0;
        /// Another thread ran during the cycle, or the computer stalled.
        std::uint64_t preempted = 0;
        /// The system started the cycle too late.
        std::uint64_t wokenLate = 0;
    };

    /// The I/O thread's times at one moment.
    struct Moment {
        /// In microseconds.
        double wall = 0.0;
        double processor = 0.0;
        /// Context switches: voluntary and involuntary ones.
        long voluntarySwitches = 0;
        long involuntarySwitches = 0;

        static Moment now() noexcept;
    };

    explicit CycleTimes(double sampleRate) : rate(sampleRate) {}

    /// Adds a cycle of `frameCount` frames.
    ORVANE_REALTIME void add(const Moment& begun, const Moment& ended, std::size_t frameCount) noexcept;

    /// From the start of a cycle to its end: wall-clock time and processor time.
    Histogram inside;
    Histogram worked;
    /// From the time a cycle was due to its start.
    Histogram late;
    Misses misses;

  private:
    double rate;
    bool hasBegun = false;
    double due = 0.0;
};

} // namespace orvane::bench
