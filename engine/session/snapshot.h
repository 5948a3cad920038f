#pragma once

#include "engine/session/channel_settings_data.h"
#include "engine/session/master_settings.h"
#include "engine/session/midi_trigger.h"
#include "engine/session/shared_list.h"
#include "platform/base/uuid.h"

#include <optional>
#include <string>

namespace orvane::session {

/// A stored scene. A plain value, cheap to copy: lists of scenes are copied on every edit and kept for undo.
struct Snapshot {
    platform::Uuid id;
    /// The display name.
    std::string name;
    /// Entry i belongs to strip i.
    SharedList<ChannelSettingsData> channels;
    MasterLevels levels = {};
    /// The note that recalls the scene; absent if there is none.
    std::optional<MIDITrigger> midiTrigger;

    bool operator==(const Snapshot&) const = default;
};

} // namespace orvane::session
