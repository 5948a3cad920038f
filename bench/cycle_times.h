#pragma once

#include "histogram.h"

#include "dsp/realtime.h"

#include <cstddef>
#include <cstdint>

namespace orvane::bench {

/// When every cycle of a device began and ended, and whose fault it was where one came too late. Fed by the
/// I/O thread, read when that has ended.
class CycleTimes final {
  public:
    /// Why a cycle ended after the next one was due. Of several causes the first of this list.
    struct Misses {
        /// We computed for longer than the period.
        std::uint64_t computed = 0;
        /// We gave the processor up within the cycle, as a thread does that waits for a lock.
        std::uint64_t waited = 0;
        /// Another thread was given the processor within the cycle, or the machine stood still.
        std::uint64_t preempted = 0;
        /// The machine began the cycle too late.
        std::uint64_t wokenLate = 0;
    };

    /// The I/O thread's time at one moment.
    struct Moment {
        /// In microseconds.
        double wall = 0.0;
        double processor = 0.0;
        /// Times that the thread gave the processor up, and that it was taken away.
        long voluntarySwitches = 0;
        long involuntarySwitches = 0;

        static Moment now() noexcept;
    };

    explicit CycleTimes(double sampleRate) : rate(sampleRate) {}

    /// A cycle of `frameCount` frames.
    ORVANE_REALTIME void add(const Moment& begun, const Moment& ended, std::size_t frameCount) noexcept;

    /// From the beginning of a cycle to its end: by the clock, and what the processor worked on it.
    Histogram inside;
    Histogram worked;
    /// From the moment a cycle was due to its beginning.
    Histogram late;
    Misses misses;

  private:
    double rate;
    bool hasBegun = false;
    double due = 0.0;
};

} // namespace orvane::bench
