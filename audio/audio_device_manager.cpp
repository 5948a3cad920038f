#include "audio/audio_device_manager.h"

#include "platform/audio_hardware/property_bytes.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <span>
#include <utility>

namespace orvane::audio {

using namespace platform;

namespace {

AudioObjectPropertyAddress globalAddress(std::uint32_t selector) {
    return {selector, kAudioObjectPropertyScopeGlobal, 0};
}

/// Never reads beyond `bytes`, whatever the header says.
std::int64_t channelsOf(std::span<const std::byte> bytes) {
    StreamConfigurationHeader header;
    if (bytes.size() < sizeof header) return 0;
    std::memcpy(&header, bytes.data(), sizeof header);
    bytes = bytes.subspan(sizeof header);

    std::int64_t channels = 0;
    const std::size_t streams =
        std::min<std::size_t>(header.mNumberBuffers, bytes.size() / sizeof(AudioBuffer));
    for (std::size_t stream = 0; stream < streams; ++stream) {
        AudioBuffer buffer;
        std::memcpy(&buffer, bytes.data() + stream * sizeof buffer, sizeof buffer);
        channels += buffer.mNumberChannels;
    }
    return channels;
}

} // namespace

AudioDeviceManagerError AudioDeviceManagerError::propertyQueryFailed(OSStatus status, std::string what) {
    return {status, std::move(what)};
}

std::string AudioDeviceManagerError::description() const {
    return fmt::format("Core Audio property query failed ({}): OSStatus {}", what, status);
}

AudioDeviceManager::Result<std::vector<AudioDeviceInfo>> AudioDeviceManager::allDevices() {
    const AudioObjectPropertyAddress address = globalAddress(kAudioHardwarePropertyDevices);
    const PropertySize size = hardware.AudioObjectGetPropertyDataSize(kAudioObjectSystemObject, address);
    if (size.status != noErr)
        return AudioDeviceManagerError::propertyQueryFailed(
            size.status, "kAudioHardwarePropertyDevices size"
        );

    std::vector<AudioObjectID> ids(size.size / sizeof(AudioObjectID));
    const PropertySize read = hardware.AudioObjectGetPropertyData(
        kAudioObjectSystemObject, address, std::as_writable_bytes(std::span(ids))
    );
    if (read.status != noErr)
        return AudioDeviceManagerError::propertyQueryFailed(
            read.status, "kAudioHardwarePropertyDevices data"
        );
    // Devices may have gone since the size was asked for.
    ids.resize(std::min(ids.size(), read.size / sizeof(AudioObjectID)));

    std::vector<AudioDeviceInfo> devices;
    for (const AudioObjectID id : ids)
        if (auto device = describe(id)) devices.push_back(std::move(device).value());
    return devices;
}

AudioDeviceManager::Result<AudioDeviceInfo> AudioDeviceManager::device(AudioObjectID id) {
    std::uint32_t isAlive = 0;
    const PropertySize read = hardware.AudioObjectGetPropertyData(
        id, globalAddress(kAudioDevicePropertyDeviceIsAlive), platform::writableBytesOf(isAlive)
    );
    if (read.status != noErr)
        return AudioDeviceManagerError::propertyQueryFailed(read.status, "kAudioDevicePropertyDeviceIsAlive");
    return describe(id);
}

AudioDeviceManager::Result<AudioDeviceInfo> AudioDeviceManager::describe(AudioObjectID device) {
    const auto uid = stringProperty(device, kAudioDevicePropertyDeviceUID);
    if (!uid) return uid.error();
    const auto name = stringProperty(device, kAudioObjectPropertyName);
    if (!name) return name.error();
    const auto inputs = channelCount(device, kAudioObjectPropertyScopeInput);
    if (!inputs) return inputs.error();
    const auto outputs = channelCount(device, kAudioObjectPropertyScopeOutput);
    if (!outputs) return outputs.error();
    const auto sampleRate = doubleProperty(device, kAudioDevicePropertyNominalSampleRate);
    if (!sampleRate) return sampleRate.error();
    return AudioDeviceInfo{device,         uid.value(),     name.value(),
                           inputs.value(), outputs.value(), sampleRate.value()};
}

AudioDeviceManager::Result<std::int64_t>
AudioDeviceManager::channelCount(AudioObjectID device, std::uint32_t scope) {
    const AudioObjectPropertyAddress address{kAudioDevicePropertyStreamConfiguration, scope, 0};
    const PropertySize size = hardware.AudioObjectGetPropertyDataSize(device, address);
    if (size.status != noErr || size.size == 0) return std::int64_t{0};

    std::vector<std::byte> bytes(size.size);
    const PropertySize read = hardware.AudioObjectGetPropertyData(device, address, bytes);
    if (read.status != noErr)
        return AudioDeviceManagerError::propertyQueryFailed(
            read.status, "kAudioDevicePropertyStreamConfiguration"
        );
    return channelsOf(std::span(bytes).first(std::min<std::size_t>(bytes.size(), read.size)));
}

AudioDeviceManager::Result<std::string>
AudioDeviceManager::stringProperty(AudioObjectID object, std::uint32_t selector) {
    StringRef text = nullptr;
    const PropertySize read =
        hardware.AudioObjectGetPropertyData(object, globalAddress(selector), platform::writableBytesOf(text));
    if (read.status != noErr)
        return AudioDeviceManagerError::propertyQueryFailed(
            read.status, fmt::format("string property {}", selector)
        );
    return *text;
}

AudioDeviceManager::Result<double>
AudioDeviceManager::doubleProperty(AudioObjectID object, std::uint32_t selector) {
    double number = 0.0;
    const PropertySize read = hardware.AudioObjectGetPropertyData(
        object, globalAddress(selector), platform::writableBytesOf(number)
    );
    if (read.status != noErr)
        return AudioDeviceManagerError::propertyQueryFailed(
            read.status, fmt::format("double property {}", selector)
        );
    return number;
}

} // namespace orvane::audio
