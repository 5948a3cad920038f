#include "platform/jack/jack_midi_own_source.h"

#include "platform/jack/jack_callback.h"

#include <jack/midiport.h>

#include <chrono>
#include <string>

namespace orvane::platform::jack {

namespace {

constexpr std::string_view sourceRole = " MIDI source";
/// Longer than the longest cycle of a busy computer.
constexpr std::chrono::seconds longestCycle{2};

} // namespace

Result<std::unique_ptr<MIDIOwnSource>, OSStatus>
JackMIDIOwnSource::create(JackClients& clients, std::string_view name) {
    std::unique_ptr<JackMIDIOwnSource> source(new JackMIDIOwnSource);
    if (!source->prepare(clients, name)) return kMIDIServerStartErr;
    return std::unique_ptr<MIDIOwnSource>(std::move(source));
}

bool JackMIDIOwnSource::prepare(JackClients& clients, std::string_view name) {
    client = clients.open(sourceRole, events);
    if (client == nullptr) return false;
    bool isActive = false;
    client->use([&](jack_client_t* jack) {
        port =
            jack_port_register(jack, std::string(name).c_str(), JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput, 0);
        isActive =
            port != nullptr
            && jack_set_process_callback(jack, jackCallback<int, &JackMIDIOwnSource::process>, this) == 0
            && jack_activate(jack) == 0;
    });
    return isActive;
}

bool JackMIDIOwnSource::isConnected() {
    bool isConnected = false;
    client->use([&](jack_client_t*) { isConnected = jack_port_connected(port) > 0; });
    return isConnected;
}

OSStatus JackMIDIOwnSource::send(std::span<const std::uint8_t> message) {
    if (client->isGone() || !sent.push(message)) return kMIDINoConnection;
    const bool isTaken = contains(events.takeWithin(longestCycle), JackEvent::messages);
    return isTaken ? noErr : kMIDINoConnection;
}

void JackMIDIOwnSource::process(jack_nframes_t frameCount, void* self) noexcept {
    auto& source = *static_cast<JackMIDIOwnSource*>(self);
    void* const buffer = jack_port_get_buffer(source.port, frameCount);
    jack_midi_clear_buffer(buffer);
    MIDIMessageQueue::Piece message;
    bool hasSent = false;
    while (source.sent.pop({&message, 1}) == 1)
        hasSent |= jack_midi_event_write(buffer, 0, message.bytes.data(), message.length) == 0;
    if (hasSent) source.events.post(JackEvent::messages);
}

} // namespace orvane::platform::jack
