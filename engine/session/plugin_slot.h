#pragma once

#include "engine/session/au_component_identity.h"
#include "engine/session/shared_list.h"
#include "platform/base/uuid.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvane::session {

/// How many insert slots a channel has; a list that came from a file may be longer.
inline constexpr std::size_t pluginSlotsPerChannel = 5;

/// One insert slot of a channel. A plain value.
struct PluginSlot {
    /// Made fresh with the slot.
    platform::Uuid id;
    /// Display name of the loaded plugin; absent when the slot is empty.
    std::optional<std::string> pluginName;
    /// Which plugin is loaded; absent when the slot is empty.
    std::optional<AUComponentIdentity> component;
    /// The plugin's saved state, which may be large; absent when none was captured.
    std::optional<SharedList<std::uint8_t>> presetData;
    /// The insert is skipped in processing.
    bool bypassed = false;

    bool operator==(const PluginSlot&) const = default;

    /// An empty slot with a new id.
    static PluginSlot makeEmpty();

    [[nodiscard]] bool isEmpty() const { return !component; }
};

/// The list with fresh empty slots added at its end until a channel has all it must have.
std::vector<PluginSlot> paddedWithEmptySlots(std::vector<PluginSlot> slots);

} // namespace orvane::session
