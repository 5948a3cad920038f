#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace orvane::soak {

/// The resident memory of this program in bytes, after returning unused memory to the system.
std::size_t residentMemory();

/// Readings of the resident memory at equal intervals, to detect continuous growth. One thread.
class MemoryTrend final {
  public:
    void read() { readings.push_back(residentMemory()); }

    [[nodiscard]] std::size_t count() const { return readings.size(); }
    /// The first reading; there must be one.
    [[nodiscard]] std::size_t first() const { return readings.front(); }
    [[nodiscard]] std::size_t last() const { return readings.back(); }

    /// By how many bytes the peak of the last quarter of the readings exceeds that of the second quarter,
    /// when everything that is created at first use exists. Absent if that is within the noise or there are
    /// too few readings.
    [[nodiscard]] std::optional<std::size_t> growth() const;

  private:
    std::vector<std::size_t> readings;
};

} // namespace orvane::soak
