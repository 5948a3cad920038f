#pragma once

#include "dsp/realtime.h"
#include "platform/jack/jack_client.h"
#include "platform/jack/jack_clients.h"
#include "platform/jack/jack_events.h"
#include "platform/midi_services/midi_driver.h"
#include "platform/midi_services/midi_message_queue.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

namespace orvane::platform::jack {

/// A MIDI output port of a client of its own.
class JackMIDIOwnSource final : public MIDIOwnSource {
  public:
    /// See MIDIDriver::createSource.
    static Result<std::unique_ptr<MIDIOwnSource>, OSStatus>
    create(JackClients& clients, std::string_view name);

    bool isConnected() override;
    /// Returns when the server has taken the message, which may have up to 31 bytes.
    OSStatus send(std::span<const std::uint8_t> message) override;

  private:
    JackMIDIOwnSource() = default;

    bool prepare(JackClients& clients, std::string_view name);
    ORVANE_REALTIME static void process(jack_nframes_t frameCount, void* self) noexcept;

    JackEvents events;
    MIDIMessageQueue sent;
    jack_port_t* port = nullptr;
    /// The last member, so that it closes before the objects that its callback uses are destroyed.
    std::unique_ptr<JackClient> client;
};

} // namespace orvane::platform::jack
