#pragma once

#include <span>
#include <string>
#include <vector>

namespace orvane::platform::jack {

/// An audio port of another client, as the server lists it. A plain value.
struct JackPort {
    /// The full name, "client:port".
    std::string name;
    std::vector<std::string> aliases;
    /// Whether the port sends samples to others, as the capture ports of hardware do.
    bool isOutput = false;
    /// Whether the server marks it as hardware.
    bool isPhysical = false;
};

/// A set of ports that we treat as one audio device: the full names of the ports that a stream connects to,
/// in channel order. A plain value.
struct JackDevice {
    std::string uid;
    std::string name;
    std::vector<std::string> inputPorts;
    std::vector<std::string> outputPorts;

    bool operator==(const JackDevice&) const = default;
};

/// Derives the devices from the ports that a server lists. Each client with hardware ports is a device; a
/// capture-only and a playback-only client are one together if their names differ only in a last word such as
/// "In" and "Out", or their aliases name the same card. Sorted by name; if there are several, an additional
/// last device has all their ports in that order.
std::vector<JackDevice> jackDevices(std::span<const JackPort> ports);

} // namespace orvane::platform::jack
