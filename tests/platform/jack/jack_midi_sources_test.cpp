#include "platform/jack/jack_midi_sources.h"

#include "platform/midi_services/sequencer_identity.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

using orvane::platform::MIDIDriverSource;
using orvane::platform::sequencerIdentity;
using orvane::platform::jack::jackMIDISources;
using orvane::platform::jack::JackPort;

TEST(JackMIDISources, IdentifyBridgesAndTheirClients) {
    const std::string keys = sequencerIdentity("Keys 49/B", 0);
    const std::string second = sequencerIdentity("Keys 49/B", 1);
    const std::tuple<JackPort, std::string, std::string, bool> cases[] = {
        {{"Synth:out", {}}, "jack:Synth:out", "Synth:out", false},
        {{"Midi-Bridge:Keys 49/B:(capture_0) Keys 49/B MIDI 1", {}}, keys, "Keys 49/B MIDI 1", true},
        {{"Midi-Bridge:Keys 49/B:(capture_1) Keys: Port 2", {}}, second, "Keys: Port 2", true},
        {{"a2j:Keys 49 B [20] (capture): Keys 49/B MIDI 1", {}}, keys, "Keys 49/B MIDI 1", true},
        {{"a2j:Keys 49 B [24] (capture): Keys 49/B MIDI 1", {}}, keys, "Keys 49/B MIDI 1", true},
        {{"a2j:Keys 49 B [20] (capture): Keys 49/B MIDI 2", {}}, second, "Keys 49/B MIDI 2", true},
        {{"system:midi_capture_3", {"alsa_pcm:Keys-49-B/midi_capture_1"}}, keys, "Keys-49-B 1", true},
        {{"system:midi_capture_1", {"system:1-0 Keys 0 capture"}},
         "jack:system:midi_capture_1",
         "system:midi_capture_1",
         false},
    };
    std::vector<JackPort> ports;
    std::vector<MIDIDriverSource> sources;
    for (const auto& [port, identity, name, isBridge] : cases) {
        ports.push_back(port);
        sources.push_back({port.name, identity, name, isBridge});
    }
    EXPECT_THAT(jackMIDISources(ports), testing::ElementsAreArray(sources));
}

} // namespace
