#pragma once

#include <compare>
#include <cstdint>

namespace orvane::session {

/// The three codes that identify an installed plugin and key its presets. Each is a four-character code, read
/// as a big-endian number. A plain value.
struct AUComponentIdentity {
    std::uint32_t componentType = 0;
    std::uint32_t componentSubType = 0;
    std::uint32_t componentManufacturer = 0;

    auto operator<=>(const AUComponentIdentity&) const = default;
};

} // namespace orvane::session
