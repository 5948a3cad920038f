#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace orvane::cli {

/// The automix gains of every strip over a run of any length: one point about every 100 ms. When the points
/// become too many, every second one is dropped and the interval doubles. One thread.
class GainHistory final {
  public:
    /// The most points that a strip has.
    static constexpr std::size_t mostPoints = 6000;

    /// `blockSeconds`: duration of a block.
    GainHistory(std::size_t stripCount, double blockSeconds);

    /// Adds the linear gains after one more block; gains beyond the strips are ignored.
    void add(std::span<const double> gains);

    /// The time between two points, and the time of the first one.
    [[nodiscard]] double intervalSeconds() const {
        return static_cast<double>(blocksPerPoint) * secondsPerBlock;
    }

    /// The points of every strip, in dB, rounded to a hundredth.
    [[nodiscard]] const std::vector<std::vector<double>>& gainsDB() const { return points; }

  private:
    void thin();

    double secondsPerBlock;
    std::size_t blocksPerPoint;
    std::size_t blocksSincePoint = 0;
    std::vector<std::vector<double>> points;
};

} // namespace orvane::cli
