#include "platform/alsa/alsa_midi_own_source.h"

#include <string>

namespace orvane::platform::alsa {

Result<std::unique_ptr<MIDIOwnSource>, OSStatus>
OwnSource::create(const char* clientName, std::string_view name) {
    SequencerHandle sequencer = openSequencer(clientName);
    if (sequencer == nullptr) return kMIDIServerStartErr;
    const int port = snd_seq_create_simple_port(
        sequencer.get(), std::string(name).c_str(), SND_SEQ_PORT_CAP_READ | SND_SEQ_PORT_CAP_SUBS_READ,
        SND_SEQ_PORT_TYPE_MIDI_GENERIC | SND_SEQ_PORT_TYPE_APPLICATION
    );
    if (port < 0) return kMIDIServerStartErr;
    return std::unique_ptr<MIDIOwnSource>(new OwnSource(std::move(sequencer), port));
}

bool OwnSource::isConnected() {
    const auto info = makeRecord<snd_seq_port_info_malloc, snd_seq_port_info_free, snd_seq_port_info_t>();
    return snd_seq_get_port_info(sequencer.get(), port, info.get()) == 0
           && snd_seq_port_info_get_read_use(info.get()) > 0;
}

OSStatus OwnSource::send(std::span<const std::uint8_t> message) {
    snd_seq_event_t event{};
    if (!translator.encode(message, event)) return kMIDINoConnection;
    snd_seq_ev_set_source(&event, static_cast<unsigned char>(port));
    snd_seq_ev_set_subs(&event);
    snd_seq_ev_set_direct(&event);
    return snd_seq_event_output_direct(sequencer.get(), &event) >= 0 ? noErr : kMIDINoConnection;
}

} // namespace orvane::platform::alsa
