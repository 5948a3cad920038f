#include "platform/alsa/device_watches.h"

#include <utility>

namespace orvane::platform::alsa {

class DeviceWatches::Watch final : public AudioDeviceWatch {
  public:
    Watch(DeviceWatches& owner, WatchId ownId) : watches(owner), id(ownId) {}
    ~Watch() override { watches.remove(id); }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

  private:
    DeviceWatches& watches;
    WatchId id;
};

DeviceWatches::DeviceWatches() : thread([this] { run(); }) {}

DeviceWatches::~DeviceWatches() {
    {
        const std::scoped_lock lock(mutex);
        ending = true;
    }
    changed.notify_all();
    thread.join();
}

std::unique_ptr<AudioDeviceWatch> DeviceWatches::add(std::string_view uid, AudioDriver::Listener listener) {
    const std::scoped_lock lock(mutex);
    entries.emplace(++lastId, Entry{std::string(uid), std::move(listener)});
    return std::make_unique<Watch>(*this, lastId);
}

void DeviceWatches::announce(std::string_view uid, AudioDeviceChange change) {
    {
        const std::scoped_lock lock(mutex);
        queue.push_back({std::string(uid), change});
    }
    changed.notify_all();
}

void DeviceWatches::remove(WatchId id) {
    std::unique_lock lock(mutex);
    entries.erase(id);
    changed.wait(lock, [&] { return called != id; });
}

void DeviceWatches::run() {
    std::unique_lock lock(mutex);
    while (true) {
        changed.wait(lock, [this] { return ending || !queue.empty(); });
        if (ending) return;
        const Announcement announcement = std::move(queue.front());
        queue.pop_front();
        deliver(announcement, lock);
    }
}

void DeviceWatches::deliver(const Announcement& announcement, std::unique_lock<std::mutex>& lock) {
    // Watches may come and go while a listener runs: the next one is looked for by its number.
    for (auto entry = entries.begin(); entry != entries.end(); entry = entries.upper_bound(called)) {
        called = entry->first;
        if (entry->second.uid != announcement.uid) continue;
        const AudioDriver::Listener listener = entry->second.listener;
        lock.unlock();
        listener(announcement.change);
        lock.lock();
        changed.notify_all();
    }
    called = none;
    changed.notify_all();
}

} // namespace orvane::platform::alsa
