#include "platform/pipewire/pipewire_midi_ports.h"

#include <spa/control/control.h>
#include <spa/pod/builder.h>
#include <spa/pod/iter.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <utility>

namespace orvane::platform::pipewire {

namespace {

/// Longer than the longest cycle of a busy computer.
constexpr std::chrono::seconds longestCycle{2};

/// The media type keeps session managers from treating the node as one for audio.
constexpr const char* mediaType = "Midi";

/// Calls `take` with each MIDI message of a buffer. Real-time safe if `take` is.
template <class Take>
void forEachMessage(const spa_data& data, Take take) noexcept {
    if (data.data == nullptr || data.chunk == nullptr) return;
    void* const pod = spa_pod_from_data(data.data, data.maxsize, data.chunk->offset, data.chunk->size);
    if (pod == nullptr || spa_pod_is_sequence(static_cast<spa_pod*>(pod)) == 0) return;
    auto* const sequence = static_cast<spa_pod_sequence*>(pod);
    spa_pod_control* control = nullptr;
    SPA_POD_SEQUENCE_FOREACH(sequence, control) {
        if (control->type != SPA_CONTROL_Midi) continue;
        take(std::span(static_cast<const std::uint8_t*>(SPA_POD_BODY(&control->value)), control->value.size));
    }
}

} // namespace

PipeWireMIDIInput::PipeWireMIDIInput(
    PipeWireGraph& ofServer, MIDIEvents& inputEvents, std::string inputPortName,
    MIDIDriver::Receiver inputReceiver, SystemLog* systemLog
)
    : graph(ofServer),
      events(inputEvents),
      portName(std::move(inputPortName)),
      received("PipeWire", std::move(inputReceiver), systemLog) {}

bool PipeWireMIDIInput::open() {
    if (node && !node->isLost()) return false;
    node.reset();
    if (!graph.isServerRunning()) return false;
    node.emplace(graph, &PipeWireMIDIInput::process, this);
    if (node->make({{PW_KEY_MEDIA_TYPE, mediaType}})) {
        port = node->addPort(SPA_DIRECTION_INPUT, portName, midiFormat);
        if (port != nullptr && node->run()) return true;
    }
    node.reset();
    return false;
}

std::optional<ObjectId> PipeWireMIDIInput::find(const std::string& source) const {
    const PipeWireGraph::Lock lock(graph);
    const auto& ports = graph.objects().ports;
    const auto found = std::ranges::find_if(ports, [&source](const auto& listed) {
        return std::to_string(listed.second.serial) == source;
    });
    return found == ports.end() ? std::nullopt : std::optional(found->first);
}

OSStatus PipeWireMIDIInput::connect(const std::string& source) {
    const std::optional<ObjectId> sending = find(source);
    const bool isLinked = node && sending && node->link({{*sending, node->inputPorts().front()}});
    return isLinked ? noErr : kMIDIUnknownEndpoint;
}

void PipeWireMIDIInput::disconnect(const std::string& source) {
    if (const auto sending = find(source); node && sending) node->unlink(*sending);
}

void PipeWireMIDIInput::process(void* self, const spa_io_position&) noexcept {
    auto& input = *static_cast<PipeWireMIDIInput*>(self);
    pw_buffer* const taken = pw_filter_dequeue_buffer(input.port);
    if (taken == nullptr) return;
    bool hasMessages = false;
    forEachMessage(taken->buffer->datas[0], [&](std::span<const std::uint8_t> message) {
        input.received.push(message);
        hasMessages = true;
    });
    pw_filter_queue_buffer(input.port, taken);
    if (hasMessages) input.events.post(MIDIEvent::messages);
}

Result<std::unique_ptr<MIDIOwnSource>, OSStatus>
PipeWireMIDIOwnSource::create(PipeWireGraph& graph, std::string_view name) {
    std::unique_ptr<PipeWireMIDIOwnSource> source(new PipeWireMIDIOwnSource(graph));
    if (!graph.isServerRunning() || !source->node.make({{PW_KEY_MEDIA_TYPE, mediaType}}))
        return kMIDIServerStartErr;
    source->port = source->node.addPort(SPA_DIRECTION_OUTPUT, std::string(name), midiFormat);
    if (source->port == nullptr || !source->node.run()) return kMIDIServerStartErr;
    return std::unique_ptr<MIDIOwnSource>(std::move(source));
}

bool PipeWireMIDIOwnSource::isConnected() {
    const PipeWireGraph::Lock lock(graph);
    return std::ranges::any_of(graph.objects().links, [this](const auto& link) {
        return link.second == node.outputPorts().front();
    });
}

OSStatus PipeWireMIDIOwnSource::send(std::span<const std::uint8_t> message) {
    if (node.isLost() || !sent.push(message)) return kMIDINoConnection;
    return contains(events.takeWithin(longestCycle), MIDIEvent::messages) ? noErr : kMIDINoConnection;
}

void PipeWireMIDIOwnSource::process(void* self, const spa_io_position&) noexcept {
    auto& source = *static_cast<PipeWireMIDIOwnSource*>(self);
    pw_buffer* const filled = pw_filter_dequeue_buffer(source.port);
    if (filled == nullptr) return;
    const spa_data& data = filled->buffer->datas[0];
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, data.data, data.maxsize);
    spa_pod_frame frame{};
    spa_pod_builder_push_sequence(&builder, &frame, 0);
    MIDIMessageQueue::Piece message;
    bool hasSent = false;
    while (source.sent.pop({&message, 1}) == 1) {
        spa_pod_builder_control(&builder, 0, SPA_CONTROL_Midi);
        spa_pod_builder_bytes(&builder, message.bytes.data(), message.length);
        hasSent = true;
    }
    spa_pod_builder_pop(&builder, &frame);
    data.chunk->offset = 0;
    data.chunk->size = builder.state.offset;
    data.chunk->stride = 1;
    pw_filter_queue_buffer(source.port, filled);
    if (hasSent) source.events.post(MIDIEvent::messages);
}

} // namespace orvane::platform::pipewire
