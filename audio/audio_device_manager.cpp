#include "audio/audio_device_manager.h"

#include <fmt/format.h>

#include <cstdint>
#include <numeric>
#include <string_view>
#include <utility>

namespace orvane::audio {

using namespace platform;

namespace {

/// The value of a property that error messages name by its type and selector.
template <class Value, class Property>
AudioDeviceManager::Result<Value>
readProperty(AudioHardware& hardware, const Property& property, std::string_view type) {
    Result<Value, OSStatus> read = hardware.AudioObjectGetPropertyData(property);
    if (!read)
        return AudioDeviceManagerError{read.error(), fmt::format("{} property {}", type, Property::selector)};
    return std::move(read).value();
}

/// Channels over all streams of a device in one direction; 0 if it has none.
AudioDeviceManager::Result<std::int64_t>
channelCount(AudioHardware& hardware, const StreamConfiguration& property) {
    const auto streams = hardware.AudioObjectGetPropertyData(property);
    if (streams) return std::accumulate(streams.value().begin(), streams.value().end(), std::int64_t{0});
    const auto& [step, status] = streams.error();
    if (step == SizedReadFailure::Step::size) return std::int64_t{0};
    return AudioDeviceManagerError{status, "kAudioDevicePropertyStreamConfiguration"};
}

} // namespace

std::string AudioDeviceManagerError::description() const {
    return fmt::format("Core Audio property query failed ({}): OSStatus {}", what, status);
}

AudioDeviceManager::Result<std::vector<AudioDeviceInfo>> AudioDeviceManager::allDevices() {
    const auto ids = hardware.AudioObjectGetPropertyData(HardwareDevices{});
    if (!ids) {
        const auto& [step, status] = ids.error();
        const bool isSize = step == SizedReadFailure::Step::size;
        return AudioDeviceManagerError{
            status, isSize ? "kAudioHardwarePropertyDevices size" : "kAudioHardwarePropertyDevices data"};
    }
    std::vector<AudioDeviceInfo> devices;
    for (const AudioObjectID id : ids.value())
        if (auto device = describe(id)) devices.push_back(std::move(device).value());
    return devices;
}

AudioDeviceManager::Result<AudioDeviceInfo> AudioDeviceManager::device(AudioObjectID id) {
    const auto isAlive = hardware.AudioObjectGetPropertyData(DeviceIsAlive{id});
    if (!isAlive) return AudioDeviceManagerError{isAlive.error(), "kAudioDevicePropertyDeviceIsAlive"};
    return describe(id);
}

AudioDeviceManager::Result<AudioDeviceInfo> AudioDeviceManager::describe(AudioObjectID device) {
    const auto uid = readProperty<std::string>(hardware, DeviceUID{device}, "string");
    if (!uid) return uid.error();
    const auto name = readProperty<std::string>(hardware, DeviceName{device}, "string");
    if (!name) return name.error();
    const auto inputs = channelCount(hardware, {device, AudioScope::input});
    if (!inputs) return inputs.error();
    const auto outputs = channelCount(hardware, {device, AudioScope::output});
    if (!outputs) return outputs.error();
    const auto sampleRate = readProperty<double>(hardware, NominalSampleRate{device}, "double");
    if (!sampleRate) return sampleRate.error();
    return AudioDeviceInfo{device,         uid.value(),     name.value(),
                           inputs.value(), outputs.value(), sampleRate.value()};
}

} // namespace orvane::audio
