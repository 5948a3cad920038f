#pragma once

#include "dsp/realtime.h"

#include <span>

namespace orvane::dsp {

/// Holds the power sum of gains at or below that of one open microphone. Switched while audio runs, the bound
/// closes in instead of stepping. Owned by one gain-sharing mixer; render thread.
class OpenMicrophoneLimit final {
  public:
    /// `controlRate`: steps per second. `gainFloor`: the lowest gain, linear, which the limit respects; with
    /// so many channels that their floors alone pass the bound, all are at the floor.
    OpenMicrophoneLimit(double controlRate, double gainFloor);

    [[nodiscard]] bool isOn() const noexcept { return on; }
    /// Begins or ends to limit `gains`. Real-time safe.
    ORVANE_REALTIME void setOn(bool isOn, std::span<const double> gains) noexcept;

    /// Scales target gains that are at least the floor. Real-time safe.
    ORVANE_REALTIME void limitTargets(std::span<double> targets) const noexcept;

    /// Closes gains that are above their limited targets as far as the bound requires; opening gains keep
    /// their values. Real-time safe.
    ORVANE_REALTIME void limitGains(std::span<double> gains, std::span<const double> targets) noexcept;

  private:
    double floorPower;
    double closingCoef;
    /// The power sum that is allowed now.
    double bound = 1.0;
    bool on = false;
};

} // namespace orvane::dsp
