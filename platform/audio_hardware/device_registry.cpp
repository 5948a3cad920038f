#include "platform/audio_hardware/device_registry.h"

#include <algorithm>
#include <utility>

namespace orvane::platform {

namespace {

constexpr AudioObjectID firstID = kAudioObjectSystemObject + 1;

} // namespace

DeviceRegistry::DeviceRegistry(std::vector<std::unique_ptr<AudioDriver>> audioDrivers)
    : drivers(std::move(audioDrivers)) {}

std::vector<AudioObjectID> DeviceRegistry::refresh() {
    for (RegisteredDevice& device : known)
        device.listed.reset();
    std::vector<AudioObjectID> ids;
    for (const std::unique_ptr<AudioDriver>& driver : drivers)
        for (AudioDriverDevice& device : driver->devices()) {
            ids.push_back(idOf(*driver, device.uid));
            find(ids.back())->listed = std::move(device);
        }
    return ids;
}

RegisteredDevice* DeviceRegistry::find(AudioObjectID id) {
    const std::scoped_lock guard(lock);
    return id >= firstID && id - firstID < known.size() ? &known[id - firstID] : nullptr;
}

AudioObjectID DeviceRegistry::idOf(AudioDriver& driver, const std::string& uid) {
    const std::scoped_lock guard(lock);
    const auto found = std::ranges::find(known, uid, &RegisteredDevice::uid);
    const auto id = static_cast<AudioObjectID>(firstID + (found - known.begin()));
    if (found == known.end()) known.push_back({driver, uid, std::nullopt});
    return id;
}

} // namespace orvane::platform
