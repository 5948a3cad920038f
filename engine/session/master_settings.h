#pragma once

#include "dsp/output_options.h"
#include "engine/session/master_output_routing.h"

namespace orvane::session {

/// The levels of the master section, which scenes keep too. A plain value.
struct MasterLevels {
    /// The master leveler's target in dB.
    double masterTargetDB = -10.0;
    /// The lead group fader in dB.
    double leadGroupGainDB = 0.0;
    /// The backing group fader in dB.
    double backingGroupGainDB = 0.0;

    bool operator==(const MasterLevels&) const = default;
};

/// The master section, as a session keeps it; the defaults are those of a fresh mixer. A plain value.
struct MasterSettings {
    MasterLevels levels = {};
    /// Linear gain of the reference noise; 0 switches it off.
    double referenceNoiseGain = 0.0;
    /// Release time of the gain sharing in milliseconds.
    double duckerReleaseMs = 400.0;
    /// Where the master bus goes.
    MasterOutputRouting masterOutputRouting = master_output::None{};
    dsp::OutputOptions outputOptions = {};

    bool operator==(const MasterSettings&) const = default;
};

} // namespace orvane::session
