#include "platform/pipewire/pipewire_device_states.h"

#include <algorithm>
#include <utility>

namespace orvane::platform::pipewire {

namespace {

const PipeWireDevice* findIn(const std::vector<PipeWireDevice>& devices, std::string_view uid) {
    const auto found = std::ranges::find(devices, uid, &PipeWireDevice::uid);
    return found == devices.end() ? nullptr : &*found;
}

} // namespace

std::vector<AudioDriverDevice> PipeWireDeviceStates::list() {
    const PipeWireGraph::Lock lock(graph);
    const std::vector<PipeWireDevice> devices = pipeWireDevices(graph.objects());
    for (auto& [uid, state] : watched)
        if (!state.isAlive && isAlive(uid, devices)) state = {true, cyclesOf(uid)};
    std::vector<AudioDriverDevice> listed;
    listed.reserve(devices.size());
    for (const PipeWireDevice& device : devices)
        listed.push_back(
            {device.uid, device.name, device.inputPorts.size(), device.outputPorts.size(),
             static_cast<double>(cyclesOf(device.uid).sampleRate)}
        );
    return listed;
}

std::optional<PipeWireDevice> PipeWireDeviceStates::find(std::string_view uid) const {
    const PipeWireGraph::Lock lock(graph);
    const std::vector<PipeWireDevice> devices = pipeWireDevices(graph.objects());
    const PipeWireDevice* const found = findIn(devices, uid);
    return found == nullptr ? std::nullopt : std::optional(*found);
}

std::optional<PipeWireCycles> PipeWireDeviceStates::cycles(std::string_view uid) const {
    const PipeWireGraph::Lock lock(graph);
    if (findIn(pipeWireDevices(graph.objects()), uid) == nullptr) return std::nullopt;
    return cyclesOf(uid);
}

PipeWireCycles PipeWireDeviceStates::cyclesOf(std::string_view uid) const {
    for (const PipeWireStream* const stream : streams)
        if (const auto running = stream->cycles(); running && stream->device().uid == uid) return *running;
    const PipeWireSettings& settings = graph.settings();
    PipeWireCycles cycles{settings.quantum, settings.sampleRate};
    if (const auto length = requested.find(uid); length != requested.end())
        cycles.frameCount = length->second;
    // Comes before what nodes request.
    if (settings.forcedQuantum != 0) cycles.frameCount = settings.forcedQuantum;
    if (settings.forcedRate != 0) cycles.sampleRate = settings.forcedRate;
    return cycles;
}

void PipeWireDeviceStates::request(std::string_view uid, std::uint32_t frameCount) {
    std::vector<PipeWireStream*> ofDevice;
    {
        const PipeWireGraph::Lock lock(graph);
        requested.insert_or_assign(std::string(uid), frameCount);
        std::ranges::copy_if(streams, std::back_inserter(ofDevice), [&](const PipeWireStream* stream) {
            return stream->device().uid == uid;
        });
    }
    for (PipeWireStream* const stream : ofDevice)
        stream->request(frameCount);
    graph.wake();
}

std::optional<std::uint32_t> PipeWireDeviceStates::requestedLength(std::string_view uid) const {
    const PipeWireGraph::Lock lock(graph);
    const auto found = requested.find(uid);
    return found == requested.end() ? std::nullopt : std::optional(found->second);
}

std::unique_ptr<AudioDeviceWatch>
PipeWireDeviceStates::watch(std::string_view uid, AudioDriver::Listener listener) {
    auto watch = notifier.watch(uid, std::move(listener));
    const PipeWireGraph::Lock lock(graph);
    watched.try_emplace(std::string(uid), Watched{true, cyclesOf(uid)}).first->second.isAlive = true;
    graph.wake();
    return watch;
}

void PipeWireDeviceStates::attach(PipeWireStream& stream) {
    const PipeWireGraph::Lock lock(graph);
    streams.push_back(&stream);
}

void PipeWireDeviceStates::detach(PipeWireStream& stream) {
    const PipeWireGraph::Lock lock(graph);
    std::erase(streams, &stream);
}

void PipeWireDeviceStates::review() {
    const std::vector<PipeWireDevice> devices = pipeWireDevices(graph.objects());
    for (auto& [uid, state] : watched) {
        if (!state.isAlive) continue;
        state.isAlive = isAlive(uid, devices);
        if (!state.isAlive) {
            notifier.announce(uid, AudioDeviceChange::died);
            continue;
        }
        const PipeWireCycles now = cyclesOf(uid);
        const PipeWireCycles before = std::exchange(state.reported, now);
        if (now.frameCount != before.frameCount) notifier.announce(uid, AudioDeviceChange::bufferSize);
        if (now.sampleRate != before.sampleRate) notifier.announce(uid, AudioDeviceChange::sampleRate);
    }
}

bool PipeWireDeviceStates::isAlive(std::string_view uid, const std::vector<PipeWireDevice>& devices) const {
    const auto isListed = [this](const PipeWireDevicePort& port) {
        const auto found = graph.objects().ports.find(port.id);
        return found != graph.objects().ports.end() && found->second.serial == port.serial;
    };
    // A stream's ports do not come back: those of a device that has are others.
    for (const PipeWireStream* const stream : streams) {
        const PipeWireDevice& linked = stream->device();
        if (linked.uid != uid) continue;
        return std::ranges::all_of(linked.inputPorts, isListed)
               && std::ranges::all_of(linked.outputPorts, isListed);
    }
    return findIn(devices, uid) != nullptr;
}

} // namespace orvane::platform::pipewire
