#pragma once

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

    /// Processes one step: `rms` is the linear RMS of the block before leveling. Returns `smoothedGain`.
    /// Real-time safe.
    ORVANE_REALTIME double process(double rms) noexcept;

    /// The current linear gain; 1.0 at creation.
    [[nodiscard]] double smoothedGain() const noexcept { return gain; }

    /// The target as linear RMS.
    double targetRMS;

  private:
    double attackCoef;
    double releaseCoef;
    double maxGain;
    double minGain;
    double gain = 1.0;
};

} // namespace orvane::dsp
