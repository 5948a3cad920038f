#include "platform/audio_hardware/device_watches.h"

#include "platform/base/cancellable_call.h"

#include <algorithm>

namespace orvane::platform {

struct DeviceWatches::Subscription {
    Subscription(std::string_view deviceUID, AudioDriver::Listener callee)
        : uid(deviceUID), listener(std::move(callee)) {}

    const std::string uid;
    CancellableCall<AudioDeviceChange> listener;
};

class DeviceWatches::Watch final : public AudioDeviceWatch {
  public:
    explicit Watch(std::shared_ptr<Subscription> watched) : subscription(std::move(watched)) {}
    ~Watch() override { subscription->listener.cancel(); }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

  private:
    std::shared_ptr<Subscription> subscription;
};

std::unique_ptr<AudioDeviceWatch> DeviceWatches::add(std::string_view uid, AudioDriver::Listener listener) {
    auto subscription = std::make_shared<Subscription>(uid, std::move(listener));
    const std::scoped_lock lock(mutex);
    std::erase_if(subscriptions, [](const auto& held) { return held.expired(); });
    subscriptions.push_back(subscription);
    return std::make_unique<Watch>(std::move(subscription));
}

bool DeviceWatches::contains(std::string_view uid) {
    return !of(uid).empty();
}

void DeviceWatches::notify(std::string_view uid, AudioDeviceChange change) {
    for (const auto& subscription : of(uid))
        subscription->listener(change);
}

std::vector<std::shared_ptr<DeviceWatches::Subscription>> DeviceWatches::of(std::string_view uid) {
    const std::scoped_lock lock(mutex);
    std::vector<std::shared_ptr<Subscription>> found;
    for (const auto& held : subscriptions)
        if (auto subscription = held.lock(); subscription && subscription->uid == uid)
            found.push_back(std::move(subscription));
    return found;
}

DeviceNotifier::DeviceNotifier() : thread([this] { run(); }) {}

DeviceNotifier::~DeviceNotifier() {
    {
        const std::scoped_lock lock(mutex);
        isEnding = true;
    }
    hasNews.notify_one();
    thread.join();
}

void DeviceNotifier::announce(std::string_view uid, AudioDeviceChange change) {
    {
        const std::scoped_lock lock(mutex);
        announcements.emplace_back(uid, change);
    }
    hasNews.notify_one();
}

void DeviceNotifier::run() {
    std::unique_lock lock(mutex);
    while (true) {
        hasNews.wait(lock, [this] { return isEnding || !announcements.empty(); });
        if (isEnding) return;
        const auto [uid, change] = std::move(announcements.front());
        announcements.pop_front();
        lock.unlock();
        watches.notify(uid, change);
        lock.lock();
    }
}

} // namespace orvane::platform
