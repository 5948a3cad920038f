#pragma once

#include "engine/session/channel_settings_data.h"
#include "platform/base/uuid.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace orvane::session {

/// One live input channel: its settings and the identity that edits, recalls and loads leave alone. The
/// settings are the base, so that they are taken and applied whole. A plain value; the engine owns the live
/// ones on the main thread.
struct ChannelStrip : ChannelSettingsData {
    platform::Uuid id;

    bool operator==(const ChannelStrip&) const = default;

    /// A strip at unity with five fresh empty slots; without an output channel it is not output.
    static ChannelStrip make(
        platform::Uuid id, std::string name, std::optional<std::int64_t> inputChannel,
        std::optional<std::int64_t> outputChannel
    );

    /// What sessions and snapshots store of this strip.
    [[nodiscard]] const ChannelSettingsData& settings() const { return *this; }

    /// Replaces all settings, the slots and their ids included; the strip keeps its own id.
    void apply(const ChannelSettingsData& settings);
};

/// The strips of a new engine: "Ch 1" onwards, without input or output.
std::vector<ChannelStrip> makeDefaultStrips(std::size_t count);

/// The settings of every strip, in order.
std::vector<ChannelSettingsData> settingsOf(std::span<const ChannelStrip> strips);

/// Applies the settings index by index over the shorter of the two lists.
void applySettings(std::span<const ChannelSettingsData> settings, std::span<ChannelStrip> strips);

} // namespace orvane::session
