#include "platform/jack_audio/jack_watches.h"

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace orvane::platform {

struct JackWatches::Entry {
    std::string uid;
    std::mutex callMutex;
    AudioDriver::Listener listener;
    std::atomic<bool> isDeviceAlive = true;

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

void JackWatches::welcomeBack(const JackServerState& state) {
    for (const auto& entry : livingEntries())
        if (state.find(entry->uid) != nullptr) entry->isDeviceAlive.store(true);
}

void JackWatches::run() {
    while (true) {
        const std::uint32_t taken = events.take();
        if (contains(taken, JackEvent::finished)) return;
        const bool isServerGone = contains(taken, JackEvent::serverGone);
        // Whoever is told is not to find its devices still there.
        if (isServerGone) server.awaitEnd();
        if (isServerGone || contains(taken, JackEvent::portsRemoved)) tellDeath(isServerGone);
        if (contains(taken, JackEvent::bufferSizeChanged)) tellBufferSize();
    }
}

void JackWatches::tellBufferSize() {
    for (const auto& entry : livingEntries())
        if (entry->isDeviceAlive.load()) entry->tell(AudioDeviceChange::bufferSize);
}

void JackWatches::tellDeath(bool isServerGone) {
    const std::optional<JackServerState> state = isServerGone ? std::nullopt : server.knownState();
    for (const auto& entry : livingEntries()) {
        if (state && state->find(entry->uid) != nullptr) continue;
        if (entry->isDeviceAlive.exchange(false)) entry->tell(AudioDeviceChange::died);
    }
}

std::vector<std::shared_ptr<JackWatches::Entry>> JackWatches::livingEntries() {
    const std::scoped_lock lock(mutex);
    std::vector<std::shared_ptr<Entry>> living;
    for (const auto& entry : entries)
        if (auto held = entry.lock()) living.push_back(std::move(held));
    return living;
}

} // namespace orvane::platform
