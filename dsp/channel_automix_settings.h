#pragma once

#include "dsp/gender_trigger_mode.h"
#include "dsp/vocal_role.h"

namespace orvane::dsp {

/// The automix settings of one channel. A plain value.
struct ChannelAutomixSettings {
    /// Weighting of the detection copy.
    GenderTriggerMode genderMode = GenderTriggerMode::neutral;
    /// Silenced, and left out of the automix decision.
    bool muted = false;
    /// Linear factor applied after the automix gain; 1.0 is unity.
    double trim = 1.0;
    /// Neither competes for gain nor is ducked; plays at its trim.
    bool bypassed = false;
    /// The group gain that applies to the output.
    VocalRole vocalRole = VocalRole::none;
    /// The channel has an output, but it is never summed into the master bus.
    bool excludedFromMasterBus = false;

    bool operator==(const ChannelAutomixSettings&) const = default;
};

} // namespace orvane::dsp
