#pragma once

#include "platform/audio_hardware/audio_driver.h"

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace orvane::platform::virtual_devices {

/// Tells watches of the changes of their devices, one after another on a thread of its own. A driver owns it;
/// it outlives its watches.
class ChangeNotifier final {
  public:
    ChangeNotifier();
    ~ChangeNotifier();
    ChangeNotifier(const ChangeNotifier&) = delete;
    ChangeNotifier& operator=(const ChangeNotifier&) = delete;

    /// Begins to tell `listener` of the changes of the device. Control threads.
    std::unique_ptr<AudioDeviceWatch> watch(std::string_view uid, AudioDriver::Listener listener);

    /// Has every watch of the device that there is now told soon. Control threads.
    void announce(std::string_view uid, AudioDeviceChange change);

  private:
    class Subscription;
    class Watch;

    struct Call {
        std::shared_ptr<Subscription> subscription;
        AudioDeviceChange change;
    };

    void run();

    std::mutex mutex;
    std::condition_variable hasNews;
    std::vector<std::weak_ptr<Subscription>> subscriptions;
    std::deque<Call> calls;
    bool isEnding = false;
    std::thread thread;
};

} // namespace orvane::platform::virtual_devices
