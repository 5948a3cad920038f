#pragma once

#include "dsp/realtime.h"
#include "platform/base/system_log.h"
#include "platform/jack/jack_client.h"
#include "platform/jack/jack_clients.h"
#include "platform/jack/jack_events.h"
#include "platform/midi_services/midi_driver.h"
#include "platform/midi_services/midi_inbox.h"

#include <memory>
#include <string>

namespace orvane::platform::jack {

/// A client of a JACK server with one MIDI input port. One thread at a time, unless noted.
class JackMIDIInput final {
  public:
    /// Does not open a client yet. Posts `messages`, and what JackClients::open posts, to the events.
    JackMIDIInput(
        JackClients& jackClients, JackEvents& inputEvents, std::string inputPortName,
        MIDIDriver::Receiver inputReceiver, SystemLog* systemLog
    );
    JackMIDIInput(const JackMIDIInput&) = delete;
    JackMIDIInput& operator=(const JackMIDIInput&) = delete;

    /// Opens a client, unless there is one on a running server; if that fails, the next call tries again.
    /// Returns whether it opened one now, which has no connections.
    bool open();
    void close() { client.reset(); }

    /// `source` is the full name of an output port.
    OSStatus connect(const std::string& source);
    void disconnect(const std::string& source);

    /// See MIDIInbox::deliver.
    void deliver() { received.deliver(); }

  private:
    ORVANE_REALTIME static void process(jack_nframes_t frameCount, void* self) noexcept;

    JackClients& clients;
    JackEvents& events;
    std::string portName;
    MIDIInbox received;
    jack_port_t* port = nullptr;
    /// The last member, so that it closes before the objects that its callback uses are destroyed.
    std::unique_ptr<JackClient> client;
};

} // namespace orvane::platform::jack
