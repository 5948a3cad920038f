#pragma once

#include "dsp/gender_trigger_mode.h"
#include "dsp/one_pole_lowpass.h"

#include <span>
#include <vector>

namespace orvane::dsp {

/// Weights the copy of a channel that its activity is measured on. `male` is a first-order low shelf that
/// lowers the band below its cutoff, `female` a high shelf that lowers the band above its cutoff; `neutral`
/// passes the signal through. One per automix channel; render thread.
class GenderTriggerFilter final {
  public:
    /// Cutoffs and sample rate in Hz; `shelfDB` is the gain of the lowered band.
    GenderTriggerFilter(
        GenderTriggerMode initialMode, double maleCutoffHz, double femaleCutoffHz, double shelfDB,
        double sampleRate
    );

    /// Weights one sample. Only the lowpass of the current mode advances. Real-time safe.
    ORVANE_REALTIME double process(double x) noexcept;

    /// Returns a weighted copy of the block. Allocates.
    std::vector<double> process(std::span<const double> block);

    /// Weights `input` into `output`, which must be at least as long. Real-time safe.
    ORVANE_REALTIME void process(std::span<const double> input, std::span<double> output) noexcept;

    /// Clears the state of both lowpasses; the mode stays. Real-time safe.
    ORVANE_REALTIME void reset() noexcept;

    /// The current weighting. A lowpass that is not in use keeps its state until its mode returns.
    GenderTriggerMode mode;
    /// Linear gain of the lowered band.
    double shelfGain;
    OnePoleLowpass lowpassMale;
    OnePoleLowpass lowpassFemale;
};

} // namespace orvane::dsp
