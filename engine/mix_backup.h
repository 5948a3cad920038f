#pragma once

#include "engine/session/channel_strip.h"
#include "engine/session/master_settings.h"
#include "engine/session/snapshot.h"
#include "plugins/insert_rack.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace orvane::engine {

/// All that loading a session or recalling a scene changes, as it was before, to go back to where there is
/// not enough memory for the whole of it. Main thread.
struct MixBackup {
    std::vector<session::ChannelStrip> channelStrips;
    session::MasterSettings master;
    std::int64_t bufferSize;
    /// Absent where they are not to be changed; they may be many and large.
    std::optional<std::vector<session::Snapshot>> snapshots;
    std::optional<std::int64_t> currentSnapshotIndex;
    std::vector<bool> pluginSlotRecallSafe;
    bool isRunning;
    /// The run of that moment; gone where it was ended since.
    std::weak_ptr<const bool> run;
    plugins::InsertRack::LivePlugins plugins;
};

} // namespace orvane::engine
