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
/// A server changes the length of the cycles in one of the next ones.
constexpr std::chrono::milliseconds longestChange{200};

std::int64_t nanosecondsNow() noexcept {
    constexpr std::int64_t perSecond = 1'000'000'000;
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * perSecond + now.tv_nsec;
}

} // namespace

Result<std::unique_ptr<AudioStream>, OSStatus> PipeWireStream::open(
    PipeWireGraph& graph, PipeWireDeviceStates& states, PipeWireDevice device,
    std::optional<std::uint32_t> frameCount, AudioStreamClient& client
) {
    std::unique_ptr<PipeWireStream> stream(
        new PipeWireStream(graph, states, std::move(device), frameCount, client)
    );
    if (!stream->prepare()) return kAudioHardwareBadDeviceError;
    return std::unique_ptr<AudioStream>(std::move(stream));
}

PipeWireStream::PipeWireStream(
    PipeWireGraph& ofServer, PipeWireDeviceStates& deviceStates, PipeWireDevice device,
    std::optional<std::uint32_t> frameCount, AudioStreamClient& cycleClient
)
    : graph(ofServer),
      states(deviceStates),
      linked(std::move(device)),
      requested(frameCount.value_or(0)),
      streamClient(cycleClient),
      silence(longestCycleInFrames, 0.0F),
      nowhere(longestCycleInFrames, 0.0F),
      node(graph, &PipeWireStream::process, this) {
    states.attach(*this);
}

PipeWireStream::~PipeWireStream() {
    stop();
    states.detach(*this);
}

bool PipeWireStream::prepare() {
    return node.make(
               {{PW_KEY_MEDIA_TYPE, "Audio"},
                {PW_KEY_MEDIA_CATEGORY, "Duplex"},
                {PW_KEY_NODE_FORCE_QUANTUM, std::to_string(requested.load())}}
           )
           && inputs.addPorts(node, SPA_DIRECTION_INPUT, linked.inputPorts.size(), "in_")
           && outputs.addPorts(node, SPA_DIRECTION_OUTPUT, linked.outputPorts.size(), "out_") && node.run();
}

template <class Sample>
bool PipeWireStream::Side<Sample>::addPorts(
    PipeWireFilter& filter, spa_direction direction, std::size_t count, const char* kind
) {
    for (std::size_t channel = 0; channel < count; ++channel) {
        ports.push_back(filter.addPort(direction, kind + std::to_string(channel + 1), audioFormat));
        if (ports.back() == nullptr) return false;
    }
    buffers.resize(count);
    blocks.resize(count);
    return true;
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
    std::vector<std::pair<ObjectId, ObjectId>> pairs;
    for (std::size_t channel = 0; channel < linked.inputPorts.size(); ++channel)
        pairs.emplace_back(linked.inputPorts[channel].id, node.inputPorts()[channel]);
    for (std::size_t channel = 0; channel < linked.outputPorts.size(); ++channel)
        pairs.emplace_back(node.outputPorts()[channel], linked.outputPorts[channel].id);
    return node.link(pairs);
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
    node.unlinkAll();
    ioThread.store(0);
    return true;
}

void PipeWireStream::request(std::uint32_t frameCount) {
    requested.store(frameCount);
    isSettled.store(false);
    node.set(PW_KEY_NODE_FORCE_QUANTUM, std::to_string(frameCount));
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

void PipeWireStream::process(void* self, const spa_io_position& position) noexcept {
    const FlushDenormals flushing;
    auto& stream = *static_cast<PipeWireStream*>(self);
    stream.observe(position.clock);
    const auto frameCount = static_cast<std::uint32_t>(position.clock.duration);
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
    // The only system call of the thread, in its first cycle.
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
