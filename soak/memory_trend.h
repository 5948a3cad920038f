#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace orvane::soak {

/// How much memory this program has resident, in bytes, having given back to the system what it does not use.
std::size_t residentMemory();

/// Readings of the resident memory at equal intervals, in which what only grows is found. One thread.
class MemoryTrend final {
  public:
    void read() { readings.push_back(residentMemory()); }

    [[nodiscard]] std::size_t count() const { return readings.size(); }
    /// Of the readings, where there is one.
    [[nodiscard]] std::size_t first() const { return readings.front(); }
    [[nodiscard]] std::size_t last() const { return readings.back(); }

    /// By how many bytes more the last quarter of the readings peaks than the second does: what is made at
    /// its first use is there by then. Nothing where it is not more than noise, or there are too few readings
    /// to say.
    [[nodiscard]] std::optional<std::size_t> growth() const;

  private:
    std::vector<std::size_t> readings;
};

} // namespace orvane::soak
