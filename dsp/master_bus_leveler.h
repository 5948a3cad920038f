#pragma once

#include "dsp/bus_activity.h"
#include "dsp/output_options.h"
#include "dsp/realtime.h"

namespace orvane::dsp {

/// Brings the master bus to a target loudness: computes the gain for a block of the bus from its RMS. The
/// gain falls fast, rises slowly and stays within bounds. Owned by one processor; render thread.
class MasterBusLeveler final {
  public:
    /// `controlRate`: calls of `process` per second. `attackMs` and `releaseMs`: time constants for a falling
    /// and a rising gain, above 0.
    MasterBusLeveler(
        double targetDB, double controlRate, double attackMs, double releaseMs, double maxGainDB,
        double minGainDB
    );

    /// The target in dB full scale, applied to the linear RMS; a new target takes effect through the usual
    /// smoothing.
    [[nodiscard]] double targetDB() const noexcept;
    void setTargetDB(double targetDB) noexcept;

    /// How the gain moves from the next step on; `follow` at creation. Real-time safe.
    ORVANE_REALTIME void setMode(LevelerMode mode) noexcept;

    /// Processes one step: `rms` is the linear RMS of the block before leveling. Returns `smoothedGain`.
    /// Real-time safe.
    ORVANE_REALTIME double process(double rms) noexcept;

    /// The current linear gain; 1.0 at creation.
    [[nodiscard]] double smoothedGain() const noexcept { return gain; }

    /// The target as linear RMS.
    double targetRMS;

  private:
    [[nodiscard]] double desiredGain(double rms) const noexcept;
    void follow(double desired) noexcept;
    void hold(double rms) noexcept;

    double attackCoef;
    double releaseCoef;
    double maxGain;
    double minGain;
    /// The most by which a held gain rises in one step.
    double slowRise;
    double gain = 1.0;
    LevelerMode levelerMode = LevelerMode::follow;
    BusActivity activity;
};

} // namespace orvane::dsp
