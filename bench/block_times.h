#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <vector>

namespace orvane::bench {

/// The time of each block of a run.
class BlockTimes final {
  public:
    /// Runs and times `block` once.
    template <class Block>
    void measure(Block&& block) {
        const auto start = std::chrono::steady_clock::now();
        block();
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        seconds.push_back(took.count());
    }

    /// The time in seconds that the given share of the blocks did not exceed: 0.5 is the median, 1 the worst.
    [[nodiscard]] double within(double share) {
        std::ranges::sort(seconds);
        const auto rank = static_cast<std::size_t>(share * static_cast<double>(seconds.size() - 1));
        return seconds[rank];
    }

  private:
    std::vector<double> seconds;
};

} // namespace orvane::bench
