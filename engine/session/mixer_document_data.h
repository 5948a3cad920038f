#pragma once

#include "engine/session/channel_settings_data.h"
#include "engine/session/master_settings.h"
#include "engine/session/snapshot.h"

#include <cstdint>
#include <vector>

namespace orvane::session {

/// A whole session, as kept in a file. The defaults apply to settings that a file lacks. A plain value.
struct MixerDocumentData {
    /// Entry i belongs to strip i.
    std::vector<ChannelSettingsData> channels = {};
    MasterSettings master = {};
    /// In frames. Any number; the engine accepts only those it offers.
    std::int64_t bufferSize = 0;
    std::vector<Snapshot> snapshots = {};
    /// Whether slot i of every channel keeps its plugin through recalls and loads.
    std::vector<bool> pluginSlotRecallSafe = std::vector<bool>(3, false);

    bool operator==(const MixerDocumentData&) const = default;
};

} // namespace orvane::session
