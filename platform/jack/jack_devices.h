#pragma once

#include <span>
#include <string>
#include <vector>

namespace orvane::platform::jack {

/// One audio port of another client, as the server lists it. A plain value.
struct JackPort {
    /// In full: "client:port".
    std::string name;
    std::vector<std::string> aliases;
    /// Whether the port gives samples to others, as the capture ports of hardware do.
    bool isOutput = false;
    /// Whether the server says that it belongs to hardware.
    bool isPhysical = false;
};

/// What we take as one audio device: the full names of the ports that a stream is connected to, in the order
/// of its channels. A plain value.
struct JackDevice {
    std::string uid;
    std::string name;
    std::vector<std::string> inputPorts;
    std::vector<std::string> outputPorts;

    bool operator==(const JackDevice&) const = default;
};

/// Sees the devices in the ports that a server lists: each client with hardware ports is one, and two clients
/// of which one only captures and the other only plays are one together where their names differ in nothing
/// but a last word such as "In" and "Out", or their aliases name the same card. Sorted by name; where there
/// is more than one, a last device has all their ports in that order.
std::vector<JackDevice> jackDevices(std::span<const JackPort> ports);

} // namespace orvane::platform::jack
