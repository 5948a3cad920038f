#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace orvane::midi {

/// One MIDI source as it is listed for the user. A plain value.
struct MIDIDeviceInfo {
    /// The source's unique ID; stays the same when the source is connected again.
    std::int32_t id = 0;
    std::string name;

    bool operator==(const MIDIDeviceInfo&) const = default;
};

} // namespace orvane::midi

template <>
struct std::hash<orvane::midi::MIDIDeviceInfo> {
    std::size_t operator()(const orvane::midi::MIDIDeviceInfo& device) const noexcept {
        constexpr std::size_t prime = 31;
        return std::hash<std::int32_t>()(device.id) * prime + std::hash<std::string>()(device.name);
    }
};
