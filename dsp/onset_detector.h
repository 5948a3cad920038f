#pragma once

#include "dsp/realtime.h"

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace orvane::dsp {

/// Notices that a voice begins: the loudest channel of the last milliseconds has risen above what it has been
/// before. Owned by one gain-sharing mixer; render thread.
class OnsetDetector final {
  public:
    /// `channelCount` is at least 1; `controlRate`: calls of `update` per second.
    OnsetDetector(std::size_t channelCount, double controlRate);

    /// Takes one linear RMS per channel; values that are not finite count as silence. Returns the channel in
    /// which a voice begins or is still rising. Real-time safe.
    ORVANE_REALTIME std::optional<std::size_t> update(std::span<const double> levels) noexcept;

    /// Each channel's level over the last few hundredths of a second. Real-time safe.
    [[nodiscard]] std::span<const double> recentLevels() const noexcept { return recent; }

  private:
    double recentAttack;
    double recentRelease;
    double pastAttack;
    double pastRelease;
    std::vector<double> recent;
    std::vector<double> past;
};

} // namespace orvane::dsp
