#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numeric>

namespace orvane::bench {

/// Counts durations in bins of 3 per cent from 0.1 microseconds on. Filled by one thread without allocating,
/// read after it has ended.
class Histogram final {
  public:
    static constexpr std::size_t size = 600;

    void add(double microseconds) noexcept {
        ++counts[binOf(microseconds)];
        if (microseconds > largest) largest = microseconds;
    }

    [[nodiscard]] std::uint64_t total() const {
        return std::accumulate(counts.begin(), counts.end(), std::uint64_t{0});
    }

    /// The duration in microseconds that the given share did not exceed.
    [[nodiscard]] double within(double share) const {
        const double wanted = share * static_cast<double>(total());
        double seen = 0.0;
        for (std::size_t bin = 0; bin < size; ++bin) {
            seen += static_cast<double>(counts[bin]);
            if (seen >= wanted) return upperEdge(bin) < largest ? upperEdge(bin) : largest;
        }
        return largest;
    }

    [[nodiscard]] double worst() const { return largest; }
    [[nodiscard]] std::uint64_t count(std::size_t bin) const { return counts[bin]; }

    /// In microseconds.
    static double upperEdge(std::size_t bin) {
        return smallest * std::pow(step, static_cast<double>(bin + 1));
    }

  private:
    static constexpr double smallest = 0.1;
    static constexpr double step = 1.03;

    static std::size_t binOf(double microseconds) noexcept {
        if (microseconds <= smallest) return 0;
        const auto bin = static_cast<std::size_t>(std::log(microseconds / smallest) / std::log(step));
        return bin < size ? bin : size - 1;
    }

    std::array<std::uint64_t, size> counts{};
    double largest = 0.0;
};

} // namespace orvane::bench
