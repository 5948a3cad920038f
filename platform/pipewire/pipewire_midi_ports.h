#pragma once

#include "dsp/realtime.h"
#include "platform/base/event_set.h"
#include "platform/base/system_log.h"
#include "platform/midi_services/midi_driver.h"
#include "platform/midi_services/midi_inbox.h"
#include "platform/midi_services/midi_message_queue.h"
#include "platform/pipewire/pipewire_filter.h"
#include "platform/pipewire/pipewire_graph.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace orvane::platform::pipewire {

/// What the thread of the MIDI driver waits for; each is one bit.
enum class MIDIEvent : std::uint32_t {
    graphChanged = 1,
    /// Messages have arrived or have been sent.
    messages = 2,
    finished = 4,
};

using MIDIEvents = EventSet<MIDIEvent>;

/// A node of ours with one MIDI input port. One thread at a time, unless noted.
class PipeWireMIDIInput final {
  public:
    /// Does not make the node yet. Posts `messages` to the events.
    PipeWireMIDIInput(
        PipeWireGraph& ofServer, MIDIEvents& inputEvents, std::string inputPortName,
        MIDIDriver::Receiver inputReceiver, SystemLog* systemLog
    );
    PipeWireMIDIInput(const PipeWireMIDIInput&) = delete;
    PipeWireMIDIInput& operator=(const PipeWireMIDIInput&) = delete;

    /// Makes a node, unless there is one on a running server; if that fails, the next call tries again.
    /// Returns whether it made one now, which has no connections.
    bool open();
    void close() { node.reset(); }

    /// `source` is the serial of a port.
    OSStatus connect(const std::string& source);
    void disconnect(const std::string& source);

    /// See MIDIInbox::deliver.
    void deliver() { received.deliver(); }

  private:
    [[nodiscard]] std::optional<ObjectId> find(const std::string& source) const;
    ORVANE_REALTIME static void process(void* self, const spa_io_position& position) noexcept;

    PipeWireGraph& graph;
    MIDIEvents& events;
    std::string portName;
    MIDIInbox received;
    void* port = nullptr;
    /// The last member, so that its cycles end before the objects that they use are destroyed.
    std::optional<PipeWireFilter> node;
};

/// A node of ours with one MIDI output port.
class PipeWireMIDIOwnSource final : public MIDIOwnSource {
  public:
    /// See MIDIDriver::createSource.
    static Result<std::unique_ptr<MIDIOwnSource>, OSStatus>
    create(PipeWireGraph& graph, std::string_view name);

    bool isConnected() override;
    /// Returns when the server has taken the message, which may have up to 31 bytes.
    OSStatus send(std::span<const std::uint8_t> message) override;

  private:
    explicit PipeWireMIDIOwnSource(PipeWireGraph& ofServer) : graph(ofServer) {}
    ORVANE_REALTIME static void process(void* self, const spa_io_position& position) noexcept;

    PipeWireGraph& graph;
    MIDIEvents events;
    MIDIMessageQueue sent;
    void* port = nullptr;
    /// The last member, so that its cycles end before the objects that they use are destroyed.
    PipeWireFilter node{graph, &PipeWireMIDIOwnSource::process, this};
};

} // namespace orvane::platform::pipewire
