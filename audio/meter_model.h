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

    /// Peaks of each strip's input, before its inserts, of each output of the main device, of each output of
    /// a master device, and of the leveled master bus before the limiter. Peaks are held for 2 s, overs until
    /// `resetOvers`.
    platform::Published<std::vector<SignalPeak>> inputPeaks;
    platform::Published<std::vector<SignalPeak>> outputPeaks;
    platform::Published<std::vector<SignalPeak>> masterOutputPeaks;
    platform::Published<SignalPeak> masterPeak;
    /// By how much the limiter has turned its outputs down at most since the last update, in dB, 0 or more.
    platform::Published<double> limiterReductionDB;

    /// Forgets the overs so far.
    void resetOvers();

    /// Publishes the last readings of a run. Called once per tick of the meters.
    void update(MixerRealtimeState& state);

    /// Publishes a load and a limiter's reduction of 0 after a run has ended; all other values stay.
    void showStopped() {
        cpuLoad.set(0.0);
        limiterReductionDB.set(0.0);
    }

  private:
    /// Peaks of several signals as they are shown.
    class HeldPeaks final {
      public:
        /// Takes the peaks of one tick and releases those that have been held long enough.
        const std::vector<SignalPeak>& update(SignalPeaks& peaks);
        const std::vector<SignalPeak>& withoutOvers();

      private:
        struct Hold {
            int ticksLeft = 0;
            bool isReleased = true;
        };

        std::vector<SignalPeak> shown;
        std::vector<Hold> holds;
    };

    HeldPeaks heldInputs;
    HeldPeaks heldOutputs;
    HeldPeaks heldMasterOutputs;
    HeldPeaks heldMaster;
};

} // namespace orvane::audio
