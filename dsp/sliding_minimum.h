#pragma once

#include "dsp/realtime.h"

#include <cstddef>
#include <vector>

namespace orvane::dsp {

/// The lowest of the last values of a stream. Render thread.
class SlidingMinimum final {
  public:
    /// The minimum of the last `windowLength` values, at least 1.
    explicit SlidingMinimum(std::size_t windowLength) : length(windowLength), candidates(windowLength) {}

    /// Forgets all values. Real-time safe.
    ORVANE_REALTIME void clear() noexcept { count = 0; }

    /// Adds a value and returns the minimum. Constant time on average, real-time safe.
    ORVANE_REALTIME double add(double value) noexcept {
        if (count > 0 && now - candidates[first].time >= length - 1) {
            first = next(first);
            --count;
        }
        // A value that is not below the new one can never be the minimum again.
        while (count > 0 && candidates[at(count - 1)].value >= value)
            --count;
        ++now;
        candidates[at(count++)] = {value, now};
        return candidates[first].value;
    }

  private:
    /// A value that is the lowest from its time on.
    struct Candidate {
        double value = 0.0;
        std::size_t time = 0;
    };

    [[nodiscard]] std::size_t at(std::size_t index) const noexcept {
        const std::size_t place = first + index;
        return place < length ? place : place - length;
    }
    [[nodiscard]] std::size_t next(std::size_t place) const noexcept {
        return place + 1 < length ? place + 1 : 0;
    }

    std::size_t length;
    std::vector<Candidate> candidates;
    std::size_t first = 0;
    std::size_t count = 0;
    std::size_t now = 0;
};

} // namespace orvane::dsp
