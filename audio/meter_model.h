#pragma once

#include "audio/mixer_realtime_state.h"
#include "platform/base/published.h"

#include <cstddef>
#include <vector>

namespace orvane::audio {

/// The values of all meters. Made once with the engine, which owns it; views subscribe to it. Main thread.
class MeterModel final {
  public:
    /// `channelCount`: strips.
    explicit MeterModel(std::size_t channelCount);

    /// Linear RMS of each strip's output, 0 without input; once audio runs one entry more, the reference
    /// noise's.
    platform::Published<std::vector<double>> channelMeters;
    /// Linear RMS of the master bus.
    platform::Published<double> masterMeter;
    /// The leveler's gain, linear; 1 before the first block.
    platform::Published<double> masterGain{1.0};
    /// Smoothed share of a block's duration that the render pass takes, 0 to 1.
    platform::Published<double> cpuLoad;
    /// How far each strip is turned down, in dB, 0 to 120.
    platform::Published<std::vector<double>> channelGainReductionDB;
    /// Linear RMS of the reference noise, smoothed from update to update.
    platform::Published<double> pinkNoiseLevel;

    /// Publishes the last readings of a run. Called once per tick of the meters.
    void update(const MixerRealtimeState& state);

    /// Publishes a load of 0 after a run has ended; all other values stay.
    void showStopped() { cpuLoad.set(0.0); }
};

} // namespace orvane::audio
