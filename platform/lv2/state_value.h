#pragma once

#include "platform/files/property_list.h"
#include "platform/lv2/urid_map.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace orvane::platform::lv2 {

/// A value of a plugin's state, as the plugin reads it. A plain value.
struct StateValue {
    LV2_URID type = 0;
    std::uint32_t flags = 0;
    /// The body of the atom, aligned for any type.
    std::vector<std::byte> body = {};
};

/// Encodes the value as a dictionary; absent if it refers to URIDs and so would mean something else in
/// another process.
std::optional<PropertyList::Dictionary> encode(const StateValue& value, const UridMap& urids);

/// Decodes what `encode` returned; absent for anything else, such as a body of the wrong size.
std::optional<StateValue> decode(const PropertyList& encoded, UridMap& urids);

} // namespace orvane::platform::lv2
