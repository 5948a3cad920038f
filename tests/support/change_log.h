#pragma once

#include "platform/audio_hardware/audio_driver.h"
#include "support/wait_for.h"

#include <cstddef>
#include <mutex>
#include <vector>

namespace orvane::test {

/// Collects a watch's notifications. Must outlive the watch.
class ChangeLog final {
  public:
    [[nodiscard]] platform::AudioDriver::Listener listener() {
        return [this](platform::AudioDeviceChange change) {
            const std::scoped_lock lock(mutex);
            changes.push_back(change);
        };
    }

    [[nodiscard]] std::vector<platform::AudioDeviceChange> get() const {
        const std::scoped_lock lock(mutex);
        return changes;
    }

    /// Waits for at least `count` changes and returns all.
    std::vector<platform::AudioDeviceChange> waitFor(std::size_t count) const {
        test::waitFor([&] { return get().size() >= count; });
        return get();
    }

  private:
    mutable std::mutex mutex;
    std::vector<platform::AudioDeviceChange> changes;
};

} // namespace orvane::test
