#pragma once

#include "platform/audio_hardware/audio_driver.h"

#include <condition_variable>
#include <mutex>
#include <vector>

namespace orvane::test {

/// Collects a watch's notifications. Must outlive the watch.
class ChangeLog final {
  public:
    [[nodiscard]] platform::AudioDriver::Listener listener() {
        return [this](platform::AudioDeviceChange change) {
            {
                const std::scoped_lock lock(mutex);
                changes.push_back(change);
            }
            hasChanged.notify_all();
        };
    }

    [[nodiscard]] bool isEmpty() {
        const std::scoped_lock lock(mutex);
        return changes.empty();
    }

    /// Waits for at least `count` changes and returns all.
    std::vector<platform::AudioDeviceChange> waitFor(std::size_t count) {
        std::unique_lock lock(mutex);
        hasChanged.wait(lock, [this, count] { return changes.size() >= count; });
        return changes;
    }

  private:
    std::mutex mutex;
    std::condition_variable hasChanged;
    std::vector<platform::AudioDeviceChange> changes;
};

} // namespace orvane::test
