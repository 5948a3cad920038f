#include "platform/jack/jack_watches.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <utility>

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

struct JackWatches::Entry {
    std::string uid;
    std::mutex callMutex;
    AudioDriver::Listener listener;
    std::atomic<bool> isDeviceAlive = true;
    std::atomic<bool> hasAllChannels = true;
    /// The ports that the stream on it is connected to, once there is one.
    std::optional<JackDevice> connected;

    void tell(AudioDeviceChange change) {
        const std::scoped_lock lock(callMutex);
        if (listener) listener(change);
    }
};

class JackWatches::Watch final : public AudioDeviceWatch {
  public:
    explicit Watch(std::shared_ptr<Entry> watched) : entry(std::move(watched)) {}
    ~Watch() override {
        const std::scoped_lock lock(entry->callMutex);
        entry->listener = nullptr;
    }

  private:
    std::shared_ptr<Entry> entry;
};

JackWatches::JackWatches(JackEvents& serverEvents, JackServer& jackServer)
    : events(serverEvents), server(jackServer), thread([this] { run(); }) {}

JackWatches::~JackWatches() {
    events.post(JackEvent::finished);
    thread.join();
}

std::unique_ptr<AudioDeviceWatch> JackWatches::add(std::string_view uid, AudioDriver::Listener listener) {
    auto entry = std::make_shared<Entry>();
    entry->uid = uid;
    entry->listener = std::move(listener);
    {
        const std::scoped_lock lock(mutex);
        std::erase_if(entries, [](const auto& other) { return other.expired(); });
        entries.push_back(entry);
    }
    events.post(JackEvent::portsRemoved);
    return std::make_unique<Watch>(std::move(entry));
}

void JackWatches::watchPorts(const JackDevice& connected) {
    for (const auto& entry : livingEntries()) {
        if (entry->uid != connected.uid) continue;
        entry->hasAllChannels.store(true);
        const std::scoped_lock lock(mutex);
        entry->connected = connected;
    }
}

void JackWatches::welcomeBack(const JackServerState& state) {
    for (const auto& entry : livingEntries()) {
        if (state.find(entry->uid) == nullptr || entry->isDeviceAlive.exchange(true)) continue;
        const std::scoped_lock lock(mutex);
        entry->connected.reset();
    }
}

void JackWatches::run() {
    while (true) {
        const std::uint32_t taken = events.take();
        if (contains(taken, JackEvent::finished)) return;
        const bool isServerGone = contains(taken, JackEvent::serverGone);
        // Whoever is told is not to find its devices still there.
        if (isServerGone) server.awaitEnd();
        if (isServerGone || contains(taken, JackEvent::portsRemoved)) tellLosses(isServerGone);
        if (contains(taken, JackEvent::bufferSizeChanged)) tellAll(AudioDeviceChange::bufferSize);
        if (contains(taken, JackEvent::sampleRateChanged)) tellAll(AudioDeviceChange::sampleRate);
    }
}

void JackWatches::tellAll(AudioDeviceChange change) {
    for (const auto& entry : livingEntries())
        if (entry->isDeviceAlive.load()) entry->tell(change);
}

void JackWatches::tellLosses(bool isServerGone) {
    const std::optional<JackServerState> state = isServerGone ? std::nullopt : server.knownState();
    for (const auto& entry : livingEntries()) {
        const auto loss = state ? lossOf(*entry, *state) : AudioDeviceChange::died;
        if (!loss || !entry->isDeviceAlive.load()) continue;
        std::atomic<bool>& isIntact =
            loss == AudioDeviceChange::died ? entry->isDeviceAlive : entry->hasAllChannels;
        if (isIntact.exchange(false)) entry->tell(*loss);
    }
}

std::optional<AudioDeviceChange> JackWatches::lossOf(const Entry& entry, const JackServerState& state) {
    const std::scoped_lock lock(mutex);
    if (!entry.connected) {
        if (state.find(entry.uid) != nullptr) return std::nullopt;
        return AudioDeviceChange::died;
    }
    const std::set<std::string> present = portsOf(state);
    const auto& [uid, name, inputs, outputs] = *entry.connected;
    const std::size_t presentInputs = countOf(inputs, present);
    const std::size_t presentOutputs = countOf(outputs, present);
    if (presentInputs == inputs.size() && presentOutputs == outputs.size()) return std::nullopt;
    // There is nothing to mix or nothing to play it on.
    const bool hasLostSide =
        (presentInputs == 0 && !inputs.empty()) || (presentOutputs == 0 && !outputs.empty());
    return hasLostSide ? AudioDeviceChange::died : AudioDeviceChange::lostChannels;
}

std::vector<std::shared_ptr<JackWatches::Entry>> JackWatches::livingEntries() {
    const std::scoped_lock lock(mutex);
    std::vector<std::shared_ptr<Entry>> living;
    for (const auto& entry : entries)
        if (auto held = entry.lock()) living.push_back(std::move(held));
    return living;
}

} // namespace orvane::platform::jack
