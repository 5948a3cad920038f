#pragma once

#include "platform/audio_hardware/audio_driver.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace orvane::platform::alsa {

/// Tells listeners of changes on a thread of its own. Owned by the driver; outlives the watches it gives.
class DeviceWatches final {
  public:
    DeviceWatches();
    ~DeviceWatches();
    DeviceWatches(const DeviceWatches&) = delete;
    DeviceWatches& operator=(const DeviceWatches&) = delete;

    /// Main thread.
    [[nodiscard]] std::unique_ptr<AudioDeviceWatch> add(std::string_view uid, AudioDriver::Listener listener);

    /// Has the device's listeners called, in the order of the announcements. Any thread but a real-time one.
    void announce(std::string_view uid, AudioDeviceChange change);

  private:
    class Watch;
    using WatchId = std::uint64_t;
    /// No watch has it.
    static constexpr WatchId none = 0;

    struct Entry {
        std::string uid;
        AudioDriver::Listener listener;
    };
    struct Announcement {
        std::string uid;
        AudioDeviceChange change;
    };

    void remove(WatchId id);
    void run();
    void deliver(const Announcement& announcement, std::unique_lock<std::mutex>& lock);

    std::mutex mutex;
    std::condition_variable changed;
    std::map<WatchId, Entry> entries;
    std::deque<Announcement> queue;
    WatchId lastId = none;
    /// The watch whose listener is being called.
    WatchId called = none;
    bool ending = false;
    /// Last, so that all it uses is there before it and after it.
    std::thread thread;
};

} // namespace orvane::platform::alsa
