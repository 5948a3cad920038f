#include "platform/jack/jack_watches.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace orvane::platform::jack {

namespace {

std::set<std::string> portsOf(const JackServerState& state) {
    std::set<std::string> ports;
    for (const JackDevice& device : state.devices)
        for (const auto& side : {device.inputPorts, device.outputPorts})
            ports.insert(side.begin(), side.end());
    return ports;
}

std::size_t countOf(const std::vector<std::string>& ports, const std::set<std::string>& present) {
    return static_cast<std::size_t>(std::ranges::count_if(ports, [&present](const std::string& port) {
        return present.contains(port);
    }));
}

} // namespace

JackWatches::JackWatches(JackEvents& serverEvents, JackServer& jackServer)
    : events(serverEvents), server(jackServer), thread([this] { run(); }) {}

JackWatches::~JackWatches() {
    events.post(JackEvent::finished);
    thread.join();
}

std::unique_ptr<AudioDeviceWatch> JackWatches::add(std::string_view uid, AudioDriver::Listener listener) {
    std::unique_ptr<AudioDeviceWatch> watch;
    {
        const std::scoped_lock lock(mutex);
        if (!watches.contains(uid)) devices.insert_or_assign(std::string(uid), WatchedDevice{});
        devices.find(uid)->second.isAlive = true;
        watch = watches.add(uid, std::move(listener));
    }
    events.post(JackEvent::portsRemoved);
    return watch;
}

void JackWatches::watchPorts(const JackDevice& connected) {
    const std::scoped_lock lock(mutex);
    const auto device = devices.find(connected.uid);
    if (device == devices.end()) return;
    device->second.hasAllChannels = true;
    device->second.connected = connected;
}

void JackWatches::rearm(const JackServerState& state) {
    const std::scoped_lock lock(mutex);
    for (auto& [uid, device] : devices)
        if (!device.isAlive && state.find(uid) != nullptr) device = WatchedDevice{};
}

void JackWatches::run() {
    while (true) {
        const std::uint32_t taken = events.take();
        if (contains(taken, JackEvent::finished)) return;
        const bool isServerGone = contains(taken, JackEvent::serverGone);
        // Listeners must not see its devices any more.
        if (isServerGone) server.awaitEnd();
        if (isServerGone || contains(taken, JackEvent::portsRemoved)) notifyLosses(isServerGone);
        if (contains(taken, JackEvent::bufferSizeChanged)) notifyAll(AudioDeviceChange::bufferSize);
        if (contains(taken, JackEvent::sampleRateChanged)) notifyAll(AudioDeviceChange::sampleRate);
    }
}

void JackWatches::notifyAll(AudioDeviceChange change) {
    std::vector<std::string> living;
    {
        const std::scoped_lock lock(mutex);
        for (const auto& [uid, device] : devices)
            if (device.isAlive) living.push_back(uid);
    }
    for (const std::string& uid : living)
        watches.notify(uid, change);
}

void JackWatches::notifyLosses(bool isServerGone) {
    const std::optional<JackServerState> state = isServerGone ? std::nullopt : server.knownState();
    std::vector<std::pair<std::string, AudioDeviceChange>> losses;
    {
        const std::scoped_lock lock(mutex);
        for (auto& [uid, device] : devices) {
            const auto loss = state ? lossOf(uid, device, *state) : AudioDeviceChange::died;
            if (!loss || !device.isAlive) continue;
            bool& isIntact = loss == AudioDeviceChange::died ? device.isAlive : device.hasAllChannels;
            if (std::exchange(isIntact, false)) losses.emplace_back(uid, *loss);
        }
    }
    for (const auto& [uid, loss] : losses)
        watches.notify(uid, loss);
}

std::optional<AudioDeviceChange>
JackWatches::lossOf(std::string_view uid, const WatchedDevice& device, const JackServerState& state) {
    if (!device.connected) {
        if (state.find(uid) != nullptr) return std::nullopt;
        return AudioDeviceChange::died;
    }
    const std::set<std::string> present = portsOf(state);
    const std::vector<std::string>& inputs = device.connected->inputPorts;
    const std::vector<std::string>& outputs = device.connected->outputPorts;
    const std::size_t presentInputs = countOf(inputs, present);
    const std::size_t presentOutputs = countOf(outputs, present);
    if (presentInputs == inputs.size() && presentOutputs == outputs.size()) return std::nullopt;
    // No inputs to mix, or no outputs to play on.
    const bool hasLostSide =
        (presentInputs == 0 && !inputs.empty()) || (presentOutputs == 0 && !outputs.empty());
    return hasLostSide ? AudioDeviceChange::died : AudioDeviceChange::lostChannels;
}

} // namespace orvane::platform::jack
