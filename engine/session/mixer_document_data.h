#pragma once

#include "engine/session/channel_settings_data.h"
#include "engine/session/master_output_routing.h"
#include "engine/session/snapshot.h"

#include <cstdint>
#include <vector>

namespace orvane::session {

/// A whole session as one file keeps it. The defaults are what a file that lacks the setting means. A plain
/// value.
struct MixerDocumentData {
    /// Entry i belongs to strip i.
    std::vector<ChannelSettingsData> channels = {};
    /// The master leveler's target in dB.
    double masterTargetDB = 0.0;
    /// In frames; any number, the engine takes only those it offers.
    std::int64_t bufferSize = 0;
    std::vector<Snapshot> snapshots = {};
    /// Where the master bus goes.
    MasterOutputRouting masterOutputRouting = master_output::None{};
    /// The lead group fader in dB.
    double leadGroupGainDB = 0.0;
    /// The backing group fader in dB.
    double backingGroupGainDB = 0.0;
    /// Entry i is true where slot i of every channel keeps its plugin through recalls and loads.
    std::vector<bool> pluginSlotRecallSafe = std::vector<bool>(3, false);
    /// Linear factor; 0 is off.
    double referenceNoiseGain = 0.0;
    /// In milliseconds.
    double duckerReleaseMs = 400.0;

    bool operator==(const MixerDocumentData&) const = default;
};

} // namespace orvane::session
