#pragma once

#include "dsp/realtime.h"
#include "platform/base/system_log.h"
#include "platform/jack/jack_client.h"
#include "platform/jack/jack_clients.h"
#include "platform/jack/jack_events.h"
#include "platform/jack/midi_message_queue.h"
#include "platform/midi_services/midi_driver.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace orvane::platform::jack {

/// A client of a JACK server with one MIDI input port. Messages go from the server's process thread through a
/// queue to the thread that calls `deliver`; where that is hundreds of messages behind, further ones are
/// lost. One thread at a time but where said otherwise.
class JackMIDIInput final {
  public:
    /// Not yet a client of a server. Posts `messages`, and what JackClients::open posts, to the events.
    JackMIDIInput(
        JackClients& jackClients, JackEvents& inputEvents, std::string inputPortName,
        MIDIDriver::Receiver inputReceiver, SystemLog* systemLog
    );
    JackMIDIInput(const JackMIDIInput&) = delete;
    JackMIDIInput& operator=(const JackMIDIInput&) = delete;

    /// Becomes a client, unless it is one of a server that runs. Tries again at the next call where that
    /// fails. Whether it became one now, so that it has no connections.
    bool open();
    void close() { client.reset(); }

    /// `source` is the full name of an output port.
    OSStatus connect(const std::string& source);
    void disconnect(const std::string& source);

    /// Hands what has come to the receiver, and logs how many messages found no room since the last time. One
    /// thread, any.
    void deliver();

  private:
    ORVANE_REALTIME static void process(jack_nframes_t frameCount, void* self) noexcept;

    JackClients& clients;
    JackEvents& events;
    std::string portName;
    MIDIDriver::Receiver receiver;
    /// Where losses are logged; nowhere if null.
    SystemLog* log;
    MIDIMessageQueue received;
    std::atomic<std::size_t> lost = 0;
    /// What `deliver` works on.
    std::array<MIDIMessageQueue::Piece, 64> batch{};
    jack_port_t* port = nullptr;
    /// Last, so that it closes before what its callback uses goes.
    std::unique_ptr<JackClient> client;
};

} // namespace orvane::platform::jack
