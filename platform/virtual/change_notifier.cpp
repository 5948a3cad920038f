#include "platform/virtual/change_notifier.h"

#include <utility>

namespace orvane::platform::virtual_devices {

/// A listener until it is cancelled. Calls and the cancellation exclude each other.
class ChangeNotifier::Subscription final {
  public:
    Subscription(std::string_view deviceUID, AudioDriver::Listener callee)
        : uid(deviceUID), listener(std::move(callee)) {}

    void tell(AudioDeviceChange change) {
        const std::scoped_lock lock(mutex);
        if (listener) listener(change);
    }

    void cancel() {
        const std::scoped_lock lock(mutex);
        listener = nullptr;
    }

    const std::string uid;

  private:
    std::mutex mutex;
    AudioDriver::Listener listener;
};

class ChangeNotifier::Watch final : public AudioDeviceWatch {
  public:
    explicit Watch(std::shared_ptr<Subscription> watched) : subscription(std::move(watched)) {}
    ~Watch() override { subscription->cancel(); }

  private:
    std::shared_ptr<Subscription> subscription;
};

ChangeNotifier::ChangeNotifier() : thread([this] { run(); }) {}

ChangeNotifier::~ChangeNotifier() {
    {
        const std::scoped_lock lock(mutex);
        isEnding = true;
    }
    hasNews.notify_one();
    thread.join();
}

std::unique_ptr<AudioDeviceWatch>
ChangeNotifier::watch(std::string_view uid, AudioDriver::Listener listener) {
    auto subscription = std::make_shared<Subscription>(uid, std::move(listener));
    const std::scoped_lock lock(mutex);
    std::erase_if(subscriptions, [](const auto& held) { return held.expired(); });
    subscriptions.push_back(subscription);
    return std::make_unique<Watch>(std::move(subscription));
}

void ChangeNotifier::announce(std::string_view uid, AudioDeviceChange change) {
    {
        const std::scoped_lock lock(mutex);
        for (const auto& held : subscriptions)
            if (auto subscription = held.lock(); subscription && subscription->uid == uid)
                calls.push_back({std::move(subscription), change});
    }
    hasNews.notify_one();
}

void ChangeNotifier::run() {
    std::unique_lock lock(mutex);
    while (true) {
        hasNews.wait(lock, [this] { return isEnding || !calls.empty(); });
        if (isEnding) return;
        const Call call = std::move(calls.front());
        calls.pop_front();
        lock.unlock();
        call.subscription->tell(call.change);
        lock.lock();
    }
}

} // namespace orvane::platform::virtual_devices
