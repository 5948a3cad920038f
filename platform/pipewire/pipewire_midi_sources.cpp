#include "platform/pipewire/pipewire_midi_sources.h"

#include "platform/midi_services/sequencer_identity.h"

#include <algorithm>
#include <cstddef>
#include <regex>
#include <string>

namespace orvane::platform::pipewire {

namespace {

constexpr std::string_view bridgeName = "Midi-Bridge";

/// The name is "Client:(capture_0) Port", the alias "Client:Port". Versions differ in the client that they
/// put in the name.
MIDIDriverSource bridged(const std::string& address, const PipeWirePort& port) {
    static const std::regex form(R"(.*:\(capture_(\d{1,5})\) (.*))");
    std::smatch parts;
    if (!std::regex_match(port.name, parts, form)) return {address, "pipewire:" + port.name, port.name};
    const std::string shown = parts[2];
    const std::size_t clientLength = port.alias.size() - std::min(port.alias.size(), shown.size() + 1);
    return {
        address, sequencerIdentity(port.alias.substr(0, clientLength), std::stoul(parts[1])), shown, true};
}

} // namespace

std::vector<MIDIDriverSource> pipeWireMIDISources(const PipeWireObjects& objects) {
    std::vector<const PipeWirePort*> ports;
    for (const auto& [id, port] : objects.ports)
        if (port.isOutput && port.format == midiFormat && objects.nodes.contains(port.node))
            ports.push_back(&port);
    std::ranges::sort(ports, {}, &PipeWirePort::serial);
    std::vector<MIDIDriverSource> sources;
    for (const PipeWirePort* const port : ports) {
        const std::string address = std::to_string(port->serial);
        const std::string& node = objects.nodes.at(port->node).name;
        const std::string name = node + ":" + port->name;
        sources.push_back(
            node == bridgeName ? bridged(address, *port)
                               : MIDIDriverSource{address, "pipewire:" + name, name, false}
        );
    }
    return sources;
}

} // namespace orvane::platform::pipewire
