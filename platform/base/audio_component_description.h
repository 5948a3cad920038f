#pragma once

#include <cstdint>

namespace orvane::platform {

/// Identifies a component to look up; zero fields match any.
struct AudioComponentDescription {
    std::uint32_t componentType = 0;
    std::uint32_t componentSubType = 0;
    std::uint32_t componentManufacturer = 0;
    std::uint32_t componentFlags = 0;
    std::uint32_t componentFlagsMask = 0;

    bool operator==(const AudioComponentDescription&) const = default;
};

} // namespace orvane::platform
