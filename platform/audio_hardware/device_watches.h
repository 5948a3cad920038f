#pragma once

#include "platform/audio_hardware/audio_driver.h"

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace orvane::platform {

/// The watches of a driver's devices. Any thread but a real-time one; the driver owns it.
class DeviceWatches final {
  public:
    /// Calls `listener` at every later change of the device.
    [[nodiscard]] std::unique_ptr<AudioDeviceWatch> add(std::string_view uid, AudioDriver::Listener listener);

    /// Whether the device has a watch.
    [[nodiscard]] bool contains(std::string_view uid);

    /// Calls the device's listeners on the calling thread.
    void notify(std::string_view uid, AudioDeviceChange change);

  private:
    struct Subscription;
    class Watch;

    [[nodiscard]] std::vector<std::shared_ptr<Subscription>> of(std::string_view uid);

    std::mutex mutex;
    std::vector<std::weak_ptr<Subscription>> subscriptions;
};

/// Watches whose listeners are called on a thread of its own. The driver owns it.
class DeviceNotifier final {
  public:
    DeviceNotifier();
    ~DeviceNotifier();
    DeviceNotifier(const DeviceNotifier&) = delete;
    DeviceNotifier& operator=(const DeviceNotifier&) = delete;

    /// See `DeviceWatches::add`.
    [[nodiscard]] std::unique_ptr<AudioDeviceWatch>
    watch(std::string_view uid, AudioDriver::Listener listener) {
        return watches.add(uid, std::move(listener));
    }

    /// Has the device's listeners called, in the order of the announcements. Any thread but a real-time one.
    void announce(std::string_view uid, AudioDeviceChange change);

  private:
    void run();

    DeviceWatches watches;
    std::mutex mutex;
    std::condition_variable hasNews;
    std::deque<std::pair<std::string, AudioDeviceChange>> announcements;
    bool isEnding = false;
    /// Last, because it uses everything above.
    std::thread thread;
};

} // namespace orvane::platform
