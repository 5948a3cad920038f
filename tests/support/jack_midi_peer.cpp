#include "support/jack_midi_peer.h"

#include "support/jack_peer.h"
#include "support/wait_for.h"

#include <jack/midiport.h>

#include <algorithm>
#include <stdexcept>

namespace orvane::test {

JackMIDIPeer::JackMIDIPeer(std::string_view clientName, std::size_t portCount)
    : client(jack_client_open(uniqueJackName(clientName).c_str(), JackNoStartServer, nullptr)) {
    if (client == nullptr) throw std::runtime_error("The JACK server takes no further client.");
    for (std::size_t i = 1; i <= portCount; ++i)
        ports.push_back(jack_port_register(
            client, ("out_" + std::to_string(i)).c_str(), JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput, 0
        ));
    jack_set_process_callback(client, process, this);
    jack_activate(client);
}

JackMIDIPeer::~JackMIDIPeer() {
    jack_client_close(client);
}

std::string JackMIDIPeer::portName(std::size_t port) const {
    return jack_port_name(ports[port]);
}

int JackMIDIPeer::listenerCount(std::size_t port) const {
    return jack_port_connected(ports[port]);
}

bool JackMIDIPeer::play(const std::vector<Event>& events) {
    toPlay.store(&events);
    return waitFor([this] { return toPlay.load() == nullptr; });
}

int JackMIDIPeer::process(jack_nframes_t frameCount, void* self) noexcept {
    auto& peer = *static_cast<JackMIDIPeer*>(self);
    for (jack_port_t* port : peer.ports)
        jack_midi_clear_buffer(jack_port_get_buffer(port, frameCount));
    const std::vector<Event>* const events = peer.toPlay.load();
    if (events == nullptr) return 0;
    jack_nframes_t frame = 0;
    for (const Event& event : *events)
        jack_midi_event_write(
            jack_port_get_buffer(peer.ports[event.port], frameCount), std::min(frame++, frameCount - 1),
            event.bytes.data(), event.bytes.size()
        );
    peer.toPlay.store(nullptr);
    return 0;
}

} // namespace orvane::test
