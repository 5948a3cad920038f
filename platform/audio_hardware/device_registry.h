#pragma once

#include "platform/audio_hardware/audio_driver.h"
#include "platform/audio_hardware/audio_hardware.h"

#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace orvane::platform {

/// The device that an id stands for.
struct RegisteredDevice {
    AudioDriver& driver;
    const std::string uid;
    /// Its description from the last listing; absent if it was not present. Main thread.
    std::optional<AudioDriverDevice> listed;
};

/// The devices of all drivers under ids that stay theirs for the life of the process, present or not.
class DeviceRegistry final {
  public:
    explicit DeviceRegistry(std::vector<std::unique_ptr<AudioDriver>> audioDrivers);

    /// Lists the devices anew. Returns the ids of those that are present, in the order of the drivers and of
    /// their lists. Main thread.
    std::vector<AudioObjectID> refresh();

    /// Lives as long as the registry; null for an id that was never handed out. Any thread.
    [[nodiscard]] RegisteredDevice* find(AudioObjectID id);

  private:
    AudioObjectID idOf(AudioDriver& driver, const std::string& uid);

    std::vector<std::unique_ptr<AudioDriver>> drivers;
    std::mutex lock;
    /// In the order of their ids.
    std::deque<RegisteredDevice> known;
};

} // namespace orvane::platform
