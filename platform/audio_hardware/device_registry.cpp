#include "platform/audio_hardware/device_registry.h"

#include <utility>

namespace orvane::platform {

DeviceRegistry::DeviceRegistry(std::vector<std::unique_ptr<AudioDriver>> audioDrivers)
    : drivers(std::move(audioDrivers)) {}

std::vector<AudioObjectID> DeviceRegistry::refresh() {
    std::vector<AudioObjectID> ids;
    present.clear();
    for (const std::unique_ptr<AudioDriver>& driver : drivers)
        for (const AudioDriverDevice& device : driver->devices()) {
            ids.push_back(idOf(*driver, device.uid));
            present.insert_or_assign(ids.back(), device);
        }
    return ids;
}

bool DeviceRegistry::refresh(AudioObjectID id) {
    const auto registered = find(id);
    auto device = registered ? registered->driver->device(*registered->uid) : std::nullopt;
    if (!device) {
        present.erase(id);
        return false;
    }
    present.insert_or_assign(id, *std::move(device));
    return true;
}

std::optional<AudioDriverDevice> DeviceRegistry::describe(AudioObjectID id) const {
    const auto device = present.find(id);
    return device == present.end() ? std::nullopt : std::optional(device->second);
}

std::optional<RegisteredDevice> DeviceRegistry::find(AudioObjectID id) const {
    const std::scoped_lock guard(idLock);
    const auto device = known.find(id);
    return device == known.end() ? std::nullopt : std::optional(device->second);
}

StringRef DeviceRegistry::intern(const std::string& text) {
    const std::scoped_lock guard(idLock);
    return &*strings.insert(text).first;
}

AudioObjectID DeviceRegistry::idOf(AudioDriver& driver, const std::string& uid) {
    const StringRef name = intern(uid);
    const std::scoped_lock guard(idLock);
    const auto next = static_cast<AudioObjectID>(kAudioObjectSystemObject + 1 + idByUID.size());
    const auto [entry, isNew] = idByUID.try_emplace(uid, next);
    if (isNew) known.emplace(next, RegisteredDevice{&driver, name});
    return entry->second;
}

} // namespace orvane::platform
