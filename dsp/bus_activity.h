#pragma once

#include "dsp/realtime.h"

#include <array>
#include <cstddef>

namespace orvane::dsp {

/// Detects talk from the level of the master bus. The threshold follows the noise floor, the
/// lowest level of the last 1.5 s, so that quiet and noisy rooms need no setting; it has a hysteresis. Owned
/// by one leveler; render thread.
class BusActivity final {
  public:
    /// `controlRate`: calls of `update` per second.
    explicit BusActivity(double controlRate);

    /// Forgets the room; reports no talk for the next 1.5 s. Real-time safe.
    ORVANE_REALTIME void reset() noexcept;

    /// Takes the linear RMS of one block; values that are not finite count as silence. Returns whether
    /// it detects talk. Real-time safe.
    ORVANE_REALTIME bool update(double rms) noexcept;

    /// The linear RMS of the last hundredths of a second. Real-time safe.
    [[nodiscard]] double level() const noexcept;

  private:
    static constexpr std::size_t windowCount = 8;

    [[nodiscard]] double noiseFloor() const noexcept;

    double levelCoef;
    std::size_t windowLength;
    double power = 0.0;
    /// The lowest powers of the last windows, and of the one that is running.
    std::array<double, windowCount> lowest{};
    double lowestNow = 0.0;
    std::size_t blocksInWindow = 0;
    std::size_t windowsSeen = 0;
    bool active = false;
};

} // namespace orvane::dsp
