#pragma once

#include "platform/pipewire/pipewire_objects.h"

#include <cstdint>
#include <string>
#include <vector>

namespace orvane::platform::pipewire {

/// A port that a stream is linked to. A plain value.
struct PipeWireDevicePort {
    ObjectId id = 0;
    ObjectId node = 0;
    std::uint64_t serial = 0;

    bool operator==(const PipeWireDevicePort&) const = default;
};

/// Nodes that we treat as one audio device. A plain value.
struct PipeWireDevice {
    std::string uid;
    std::string name;
    /// In channel order.
    std::vector<PipeWireDevicePort> inputPorts;
    std::vector<PipeWireDevicePort> outputPorts;

    bool operator==(const PipeWireDevice&) const = default;
};

/// Derives the devices from what a server lists: its sinks and sources that have ports. The sink and the
/// source of a card are one device, as are free ones whose names differ only in a last word such as "In" and
/// "Out". A card with several sinks or sources is one device for each of its PCMs. The one that
/// plays on the default sink comes first, the others are sorted by name.
std::vector<PipeWireDevice> pipeWireDevices(const PipeWireObjects& objects);

} // namespace orvane::platform::pipewire
