#pragma once

#include "platform/files/property_list.h"
#include "platform/lv2/urid_map.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace orvane::platform::lv2 {

/// A value of a plugin's state as the plugin takes it. A plain value.
struct StateValue {
    LV2_URID type = 0;
    std::uint32_t flags = 0;
    /// The body of the atom. Aligned for any type.
    std::vector<std::byte> body = {};
};

/// The value as a dictionary. Nothing where it would mean something else in another process: where it
/// refers to URIDs from within.
std::optional<PropertyList::Dictionary> encode(const StateValue& value, const UridMap& urids);

/// What `encode` gave. Nothing for anything else, such as a body that its type cannot have.
std::optional<StateValue> decode(const PropertyList& encoded, UridMap& urids);

} // namespace orvane::platform::lv2
