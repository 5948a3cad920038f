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

/// The number of insert slots of a channel; a list from a file may be longer.
inline constexpr std::size_t pluginSlotsPerChannel = 5;

/// One insert slot of a channel. A plain value.
struct PluginSlot {
    /// Created with the slot.
    platform::Uuid id;
    /// The display name of the loaded plugin; absent if the slot is empty.
    std::optional<std::string> pluginName;
    /// The loaded plugin; absent if the slot is empty.
    std::optional<AUComponentIdentity> component;
    /// The plugin's saved state, which may be large; absent if none was captured.
    std::optional<SharedList<std::uint8_t>> presetData;
    /// Processing skips the insert.
    bool bypassed = false;

    bool operator==(const PluginSlot&) const = default;

    /// Makes an empty slot with a new id.
    static PluginSlot makeEmpty();

    [[nodiscard]] bool isEmpty() const { return !component; }
};

/// Appends new empty slots until the list has the number of a channel.
std::vector<PluginSlot> paddedWithEmptySlots(std::vector<PluginSlot> slots);

} // namespace orvane::session
