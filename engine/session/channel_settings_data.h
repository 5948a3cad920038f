#pragma once

#include "dsp/gender_trigger_mode.h"
#include "dsp/vocal_role.h"
#include "engine/session/output_routing.h"
#include "engine/session/plugin_slot.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvane::session {

/// The settings of one input channel, as kept in session files and snapshots. A plain value.
struct ChannelSettingsData {
    /// The display name.
    std::string name;
    /// The index of the device's input channel that feeds the strip, from 0; silent if absent.
    std::optional<std::int64_t> inputChannelIndex;
    /// Where the processed signal goes.
    OutputRouting outputRouting;
    /// Weighting of the detection copy.
    dsp::GenderTriggerMode genderMode = dsp::GenderTriggerMode::neutral;
    bool muted = false;
    /// Excluded from gain sharing; passes at its trim.
    bool bypassed = false;
    /// Linear factor applied after the automix gain; 1.0 is unity.
    double trim = 1.0;
    /// The group fader that controls the channel.
    dsp::VocalRole vocalRole = dsp::VocalRole::none;
    /// The inserts, in processing order.
    std::vector<PluginSlot> pluginSlots;

    bool operator==(const ChannelSettingsData&) const = default;
};

} // namespace orvane::session
