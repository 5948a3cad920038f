#include "platform/jack/jack_midi_sources.h"

#include "platform/midi_services/sequencer_identity.h"

#include <cstddef>
#include <map>
#include <optional>
#include <regex>
#include <string>

namespace orvane::platform::jack {

namespace {

/// A port of the ALSA sequencer, as described by a bridge.
struct BridgedPort {
    std::string clientName;
    unsigned long portNumber = 0;
    /// The display name.
    std::string name;
};

/// "Midi-Bridge:Client:(capture_0) Port", the bridge of PipeWire's session manager.
std::optional<BridgedPort> fromPipeWire(const JackPort& port) {
    static const std::regex form(R"(Midi-Bridge:(.*):\(capture_(\d{1,5})\) (.*))");
    std::smatch parts;
    if (!std::regex_match(port.name, parts, form)) return std::nullopt;
    return BridgedPort{parts[1], std::stoul(parts[2]), parts[3]};
}

/// An alias "alsa_pcm:Client/midi_capture_1", counted from 1: the classic server's bridge.
std::optional<BridgedPort> fromClassicServer(const JackPort& port) {
    static const std::regex form(R"(alsa_pcm:(.*)/midi_capture_(\d{1,5}))");
    std::smatch parts;
    for (const std::string& alias : port.aliases)
        if (std::regex_match(alias, parts, form) && parts[2] != "0")
            return BridgedPort{
                parts[1], std::stoul(parts[2]) - 1, std::string(parts[1]) + " " + parts[2].str()};
    return std::nullopt;
}

/// "a2j:Client [20] (capture): Port", a separate bridge program. It does not state the port's number, but
/// lists a client's ports in order; `before` counts them.
std::optional<BridgedPort>
fromBridgeProgram(const JackPort& port, std::map<std::string, unsigned long>& before) {
    static const std::regex form(R"(a2j:(.*) \[(\d+)\] \(capture\): (.*))");
    std::smatch parts;
    if (!std::regex_match(port.name, parts, form)) return std::nullopt;
    return BridgedPort{parts[1], before[parts[2]]++, parts[3]};
}

} // namespace

std::vector<MIDIDriverSource> jackMIDISources(std::span<const JackPort> ports) {
    std::map<std::string, unsigned long> before;
    std::vector<MIDIDriverSource> sources;
    for (const JackPort& port : ports) {
        std::optional<BridgedPort> bridged = fromPipeWire(port);
        if (!bridged) bridged = fromClassicServer(port);
        if (!bridged) bridged = fromBridgeProgram(port, before);
        if (bridged)
            sources.push_back(
                {port.name, sequencerIdentity(bridged->clientName, bridged->portNumber), bridged->name, true}
            );
        else
            sources.push_back({port.name, "jack:" + port.name, port.name});
    }
    return sources;
}

} // namespace orvane::platform::jack
