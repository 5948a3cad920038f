#pragma once

#include "dsp/realtime.h"

namespace orvane::dsp {

/// Brings the master bus to a target loudness: from the RMS of a block of the bus, the gain for that block.
/// The gain falls fast, rises slowly and stays within bounds. Owned by one processor; render thread.
class MasterBusLeveler final {
  public:
    /// `controlRate`: calls of `process` per second. `attackMs` and `releaseMs`: time constants while the
    /// gain falls and rises, above 0.
    MasterBusLeveler(
        double targetDB, double controlRate, double attackMs, double releaseMs, double maxGainDB,
        double minGainDB
    );

    /// The target in dB re full scale, as linear RMS; takes effect through the usual smoothing.
    [[nodiscard]] double targetDB() const noexcept;
    void setTargetDB(double targetDB) noexcept;

    /// One step: `rms` is the linear RMS of the block before leveling. Returns `smoothedGain`. Real-time
    /// safe.
    ORVANE_REALTIME double process(double rms) noexcept;

    /// The current linear gain; 1.0 at creation.
    [[nodiscard]] double smoothedGain() const noexcept { return gain; }

    /// The level that the bus is driven towards, linear RMS.
    double targetRMS;

  private:
    double attackCoef;
    double releaseCoef;
    double maxGain;
    double minGain;
    double gain = 1.0;
};

} // namespace orvane::dsp
