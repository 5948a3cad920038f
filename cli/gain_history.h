#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace orvane::cli {

/// The automix gains of every strip over a run of any length: one point about every 100 ms, and where these
/// become too many, every second of them goes and the interval doubles. One thread.
class GainHistory final {
  public:
    /// The most points that a strip has.
    static constexpr std::size_t mostPoints = 6000;

    /// `blockSeconds`: length of a block.
    GainHistory(std::size_t stripCount, double blockSeconds);

    /// Takes in the linear gains after one more block; those beyond the strips do not count.
    void add(std::span<const double> gains);

    /// Between two points; also the time of the first one.
    [[nodiscard]] double intervalSeconds() const {
        return static_cast<double>(blocksPerPoint) * secondsPerBlock;
    }

    /// Every strip's points, in dB, rounded to a hundredth.
    [[nodiscard]] const std::vector<std::vector<double>>& gainsDB() const { return points; }

  private:
    void thin();

    double secondsPerBlock;
    std::size_t blocksPerPoint;
    std::size_t blocksSincePoint = 0;
    std::vector<std::vector<double>> points;
};

} // namespace orvane::cli
