#include "platform/jack/jack_midi_input.h"

#include "platform/jack/jack_callback.h"

#include <jack/midiport.h>

#include <cerrno>
#include <string>
#include <utility>

namespace orvane::platform::jack {

namespace {

constexpr std::string_view clientRole = " MIDI";
constexpr const char* prettyPortName = "MIDI input";

} // namespace

JackMIDIInput::JackMIDIInput(
    JackClients& jackClients, JackEvents& inputEvents, std::string inputPortName,
    MIDIDriver::Receiver inputReceiver, SystemLog* systemLog
)
    : clients(jackClients),
      events(inputEvents),
      portName(std::move(inputPortName)),
      received("JACK", std::move(inputReceiver), systemLog) {}

bool JackMIDIInput::open() {
    if (client != nullptr && !client->isGone()) return false;
    client.reset();
    client = clients.open(clientRole, events);
    if (client == nullptr) return false;
    bool isActive = false;
    client->use([&](jack_client_t* jack) {
        port = jack_port_register(jack, portName.c_str(), JACK_DEFAULT_MIDI_TYPE, JackPortIsInput, 0);
        if (port != nullptr) client->setPrettyName(jack_port_uuid(port), prettyPortName);
        isActive = port != nullptr
                   && jack_set_process_callback(jack, jackCallback<int, &JackMIDIInput::process>, this) == 0
                   && jack_activate(jack) == 0;
    });
    if (!isActive) client.reset();
    return isActive;
}

OSStatus JackMIDIInput::connect(const std::string& source) {
    int status = -1;
    if (client != nullptr)
        client->use([&](jack_client_t* jack) {
            status = jack_connect(jack, source.c_str(), jack_port_name(port));
        });
    return status == 0 || status == EEXIST ? noErr : kMIDIUnknownEndpoint;
}

void JackMIDIInput::disconnect(const std::string& source) {
    if (client != nullptr)
        client->use([&](jack_client_t* jack) { jack_disconnect(jack, source.c_str(), jack_port_name(port)); }
        );
}

void JackMIDIInput::process(jack_nframes_t frameCount, void* self) noexcept {
    auto& input = *static_cast<JackMIDIInput*>(self);
    void* const buffer = jack_port_get_buffer(input.port, frameCount);
    const jack_nframes_t count = jack_midi_get_event_count(buffer);
    for (jack_nframes_t i = 0; i < count; ++i) {
        jack_midi_event_t event{};
        if (jack_midi_event_get(&event, buffer, i) == 0) input.received.push({event.buffer, event.size});
    }
    input.received.countLost(jack_midi_get_lost_event_count(buffer));
    if (count > 0) input.events.post(JackEvent::messages);
}

} // namespace orvane::platform::jack
