#pragma once

#include "platform/audio_hardware/audio_driver.h"
#include "platform/audio_hardware/audio_hardware.h"

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace orvane::platform {

/// Where an object id leads: the driver that has the device, and the device's uid.
struct RegisteredDevice {
    AudioDriver* driver = nullptr;
    StringRef uid = nullptr;
};

/// The devices of all drivers under ids that stay theirs for the life of the process, present or not. Listing
/// is the main thread's; looking an id up is any thread's.
class DeviceRegistry final {
  public:
    explicit DeviceRegistry(std::vector<std::unique_ptr<AudioDriver>> audioDrivers);

    /// The ids of the devices that are there now, in the order of the drivers and of their lists.
    std::vector<AudioObjectID> refresh();

    /// Asks after one device only; whether it is there now.
    bool refresh(AudioObjectID id);

    /// The device as it was listed by the last `refresh`; nothing if it was not there.
    [[nodiscard]] std::optional<AudioDriverDevice> describe(AudioObjectID id) const;

    /// Nothing for an id that was never handed out.
    [[nodiscard]] std::optional<RegisteredDevice> find(AudioObjectID id) const;

    /// A string that lives as long as the registry.
    StringRef intern(const std::string& text);

  private:
    AudioObjectID idOf(AudioDriver& driver, const std::string& uid);

    std::vector<std::unique_ptr<AudioDriver>> drivers;
    std::map<AudioObjectID, AudioDriverDevice> present;
    mutable std::mutex idLock;
    std::map<AudioObjectID, RegisteredDevice> known;
    std::map<std::string, AudioObjectID> idByUID;
    std::set<std::string> strings;
};

} // namespace orvane::platform
