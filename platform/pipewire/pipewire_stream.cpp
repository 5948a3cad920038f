#include "platform/pipewire/pipewire_stream.h"

#include "platform/base/flush_denormals.h"
#include "platform/base/realtime_priority.h"
#include "platform/base/stop_patience.h"
#include "platform/pipewire/pipewire_device_states.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <utility>

namespace orvane::platform::pipewire {

namespace {

/// The limit of a server with the usual configuration. Another client may change the length of the cycles at
/// any time, and cycles of the new length come before any notification.
constexpr std::size_t longestCycleInFrames = 8192;
/// A node's ports are listed some time after it has been added.
constexpr std::chrono::seconds longestListing{2};
/// A server changes the length of the cycles in one of the next ones.
constexpr std::chrono::milliseconds longestChange{200};

std::int64_t nanosecondsNow() noexcept {
    constexpr std::int64_t perSecond = 1'000'000'000;
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * perSecond + now.tv_nsec;
}

/// The numbers of a node's ports of one direction, in their order.
std::vector<ObjectId> portsOf(const PipeWireObjects& objects, ObjectId node, bool isOutput) {
    std::vector<std::pair<std::uint32_t, ObjectId>> numbered;
    for (const auto& [id, port] : objects.ports)
        if (port.node == node && port.isOutput == isOutput) numbered.emplace_back(port.number, id);
    std::ranges::sort(numbered);
    std::vector<ObjectId> ids;
    for (const auto& [number, id] : numbered)
        ids.push_back(id);
    return ids;
}

} // namespace

Result<std::unique_ptr<AudioStream>, OSStatus> PipeWireStream::open(
    PipeWireGraph& graph, PipeWireDeviceStates& states, const PipeWireDevice& device,
    std::optional<std::uint32_t> frameCount, AudioStreamClient& client
) {
    std::unique_ptr<PipeWireStream> stream(new PipeWireStream(graph, states, device, frameCount, client));
    if (!stream->prepare()) return kAudioHardwareBadDeviceError;
    return std::unique_ptr<AudioStream>(std::move(stream));
}

PipeWireStream::PipeWireStream(
    PipeWireGraph& ofServer, PipeWireDeviceStates& deviceStates, const PipeWireDevice& device,
    std::optional<std::uint32_t> frameCount, AudioStreamClient& cycleClient
)
    : graph(ofServer),
      states(deviceStates),
      linked(device),
      requested(frameCount.value_or(0)),
      streamClient(cycleClient),
      silence(longestCycleInFrames, 0.0F),
      nowhere(longestCycleInFrames, 0.0F) {
    states.attach(*this);
}

PipeWireStream::~PipeWireStream() {
    stop();
    states.detach(*this);
    const PipeWireClient::Lock lock(client);
    if (filter != nullptr) pw_filter_destroy(filter);
    client.disconnect();
}

bool PipeWireStream::prepare() {
    {
        const PipeWireClient::Lock lock(client);
        if (!client.connect() || !addFilter()) return false;
    }
    return findOwnPorts();
}

bool PipeWireStream::addFilter() {
    static const pw_filter_events events = [] {
        pw_filter_events table{};
        table.version = PW_VERSION_FILTER_EVENTS;
        table.state_changed = [](void* self, pw_filter_state, pw_filter_state, const char*) {
            static_cast<PipeWireStream*>(self)->client.wake();
        };
        table.process = &PipeWireStream::process;
        return table;
    }();
    const std::string quantum = std::to_string(requested.load());
    filter = pw_filter_new(
        client.core(), graph.programName().c_str(),
        pw_properties_new(
            PW_KEY_NODE_NAME, graph.programName().c_str(), PW_KEY_NODE_DESCRIPTION,
            graph.programName().c_str(), PW_KEY_MEDIA_TYPE, "Audio", PW_KEY_MEDIA_CATEGORY, "Duplex",
            PW_KEY_MEDIA_ROLE, "DSP", PW_KEY_NODE_FORCE_QUANTUM, quantum.c_str(), nullptr
        )
    );
    if (filter == nullptr) return false;
    pw_filter_add_listener(filter, &filterListener, &events, this);
    const bool isComplete =
        inputs.addPorts(filter, linked.inputPorts.size(), SPA_DIRECTION_INPUT, "in_")
        && outputs.addPorts(filter, linked.outputPorts.size(), SPA_DIRECTION_OUTPUT, "out_")
        && pw_filter_connect(filter, PW_FILTER_FLAG_RT_PROCESS, nullptr, 0) == 0;
    return isComplete && client.waitUntil([this] {
        return pw_filter_get_state(filter, nullptr) >= PW_FILTER_STATE_PAUSED;
    });
}

template <class Sample>
bool PipeWireStream::Side<Sample>::addPorts(
    pw_filter* filter, std::size_t count, spa_direction direction, const char* kind
) {
    for (std::size_t channel = 0; channel < count; ++channel) {
        const std::string name = kind + std::to_string(channel + 1);
        ports.push_back(pw_filter_add_port(
            filter, direction, PW_FILTER_PORT_FLAG_MAP_BUFFERS, sizeof(void*),
            pw_properties_new(PW_KEY_FORMAT_DSP, audioFormat, PW_KEY_PORT_NAME, name.c_str(), nullptr),
            nullptr, 0
        ));
        if (ports.back() == nullptr) return false;
    }
    buffers.resize(count);
    blocks.resize(count);
    return true;
}

bool PipeWireStream::findOwnPorts() {
    ObjectId node = 0;
    {
        const PipeWireClient::Lock lock(client);
        node = pw_filter_get_node_id(filter);
    }
    return graph.waitUntil(
        [&] {
            ownInputs = portsOf(graph.objects(), node, false);
            ownOutputs = portsOf(graph.objects(), node, true);
            return ownInputs.size() == inputs.ports.size() && ownOutputs.size() == outputs.ports.size();
        },
        longestListing
    );
}

OSStatus PipeWireStream::start() {
    if (isRunning) return noErr;
    missed.store(0);
    frames.store(0);
    ioThread.store(0);
    gate.open();
    isRunning = link();
    if (!isRunning) {
        stop();
        return kAudioHardwareBadDeviceError;
    }
    awaitRequestedLength();
    return noErr;
}

bool PipeWireStream::link() {
    const PipeWireClient::Lock lock(client);
    const int refusals = client.refusals();
    return client.isConnected() && linkSide(ownInputs, linked.inputPorts, false)
           && linkSide(ownOutputs, linked.outputPorts, true) && client.sync()
           && client.refusals() == refusals;
}

bool PipeWireStream::linkSide(
    const std::vector<ObjectId>& own, const std::vector<PipeWireDevicePort>& device, bool isOutput
) {
    for (std::size_t channel = 0; channel < own.size(); ++channel) {
        const std::string source = std::to_string(isOutput ? own[channel] : device[channel].id);
        const std::string sink = std::to_string(isOutput ? device[channel].id : own[channel]);
        const spa_dict_item items[] = {
            {PW_KEY_LINK_OUTPUT_PORT, source.c_str()},
            {PW_KEY_LINK_INPUT_PORT, sink.c_str()},
            {PW_KEY_OBJECT_LINGER, "false"}};
        const spa_dict properties{.flags = 0, .n_items = std::size(items), .items = items};
        links.emplace_back(static_cast<pw_proxy*>(pw_core_create_object(
            client.core(), "link-factory", PW_TYPE_INTERFACE_Link, PW_VERSION_LINK, &properties, 0
        )));
        if (links.back() == nullptr) return false;
    }
    return true;
}

void PipeWireStream::awaitRequestedLength() {
    const auto start = std::chrono::steady_clock::now();
    const auto hasLength = [this] {
        const std::uint32_t wanted = requested.load();
        const std::uint32_t now = frames.load();
        return wanted == 0 ? now > 0 : now == wanted;
    };
    while (!hasLength() && std::chrono::steady_clock::now() - start < longestChange)
        pauseWhileWaiting();
    isSettled.store(true);
    graph.wake();
}

bool PipeWireStream::stop() {
    const bool hasEnded = gate.close();
    isSettled.store(false);
    isRunning = false;
    // libpipewire would wait for the thread of the cycles without a limit.
    if (!hasEnded) return false;
    const PipeWireClient::Lock lock(client);
    if (!links.empty()) {
        links.clear();
        // The cycles end once the server has removed them.
        client.sync();
    }
    ioThread.store(0);
    return true;
}

void PipeWireStream::request(std::uint32_t frameCount) {
    requested.store(frameCount);
    isSettled.store(false);
    {
        const PipeWireClient::Lock lock(client);
        const std::string quantum = std::to_string(frameCount);
        const spa_dict_item items[] = {{PW_KEY_NODE_FORCE_QUANTUM, quantum.c_str()}};
        const spa_dict properties{.flags = 0, .n_items = std::size(items), .items = items};
        pw_filter_update_properties(filter, nullptr, &properties);
    }
    if (isRunning) awaitRequestedLength();
}

std::optional<PipeWireCycles> PipeWireStream::cycles() const noexcept {
    const PipeWireCycles now{frames.load(), rate.load()};
    return isSettled.load() && now.frameCount > 0 ? std::optional(now) : std::nullopt;
}

int PipeWireStream::realtimePriority() const noexcept {
    return realtimePriorityOf(ioThread.load());
}

std::size_t PipeWireStream::maximumFrames() const {
    return longestCycleInFrames;
}

template <class Sample>
void PipeWireStream::Side<Sample>::takeBuffers(std::uint32_t frameCount) noexcept {
    for (std::size_t channel = 0; channel < ports.size(); ++channel)
        buffers[channel] = static_cast<Sample*>(pw_filter_get_dsp_buffer(ports[channel], frameCount));
}

template <class Sample>
void PipeWireStream::Side<Sample>::select(std::size_t first, std::size_t count, Sample* spare) noexcept {
    for (std::size_t channel = 0; channel < buffers.size(); ++channel)
        blocks[channel] = {buffers[channel] == nullptr ? spare : buffers[channel] + first, count};
}

void PipeWireStream::process(void* self, spa_io_position* position) noexcept {
    if (position == nullptr) return;
    const FlushDenormals flushing;
    auto& stream = *static_cast<PipeWireStream*>(self);
    stream.observe(position->clock);
    const auto frameCount = static_cast<std::uint32_t>(position->clock.duration);
    stream.inputs.takeBuffers(frameCount);
    stream.outputs.takeBuffers(frameCount);
    for (std::size_t first = 0; first < frameCount; first += longestCycleInFrames)
        stream.cycle(first, std::min(frameCount - first, longestCycleInFrames));
}

void PipeWireStream::cycle(std::size_t first, std::size_t count) noexcept {
    inputs.select(first, count, silence.data());
    outputs.select(first, count, nowhere.data());
    if (gate.pass([&] { streamClient.cycle(inputs.blocks, outputs.blocks, count); })) return;
    for (const std::span<float>& block : outputs.blocks)
        std::ranges::fill(block, 0.0F);
}

void PipeWireStream::observe(const spa_io_clock& now) noexcept {
    // Only in the first cycle is the thread asked for.
    if (ioThread.load() == 0) {
        ioThread.store(::gettid());
        clock.reset();
    }
    const auto frameCount = static_cast<std::uint32_t>(now.duration);
    const bool hasChanged = frames.exchange(frameCount) != frameCount;
    if (rate.exchange(now.rate.denom) != now.rate.denom || hasChanged) graph.wake();
    missed.fetch_add(clock.before(
        {now.id, now.rate.denom, now.position, now.duration,
         nanosecondsNow() - static_cast<std::int64_t>(now.nsec)}
    ));
}

} // namespace orvane::platform::pipewire
