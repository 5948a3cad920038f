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

/// A live input channel: its settings, and an identity that edits, recalls and loads do not change. The
/// settings are the base class, so that they are copied and applied as a whole. A plain value; the engine
/// owns the live ones on the main thread.
struct ChannelStrip : ChannelSettingsData {
    platform::Uuid id;

    bool operator==(const ChannelStrip&) const = default;

    /// Makes a strip at unity with five new empty slots. Without an output channel it is not routed.
    static ChannelStrip make(
        platform::Uuid id, std::string name, std::optional<std::int64_t> inputChannel,
        std::optional<std::int64_t> outputChannel
    );

    /// The part that sessions and snapshots store.
    [[nodiscard]] const ChannelSettingsData& settings() const { return *this; }

    /// Replaces all settings, including the slots and their ids; the strip keeps its own id.
    void apply(const ChannelSettingsData& settings);
};

/// Makes the strips of a new engine: "Ch 1" onwards, without input or output.
std::vector<ChannelStrip> makeDefaultStrips(std::size_t count);

/// Returns the settings of every strip, in order.
std::vector<ChannelSettingsData> settingsOf(std::span<const ChannelStrip> strips);

/// Applies the settings index by index, up to the length of the shorter list.
void applySettings(std::span<const ChannelSettingsData> settings, std::span<ChannelStrip> strips);

} // namespace orvane::session
