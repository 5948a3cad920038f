#include "platform/audio_hardware/system_audio_hardware.h"

#include "platform/audio_hardware/audio_unit_instance.h"

#include <cstddef>
#include <utility>

namespace orvane::platform {

namespace {

constexpr AudioComponent outputUnitComponent = 1;

constexpr AudioComponentDescription outputUnitDescription = {
    .componentType = fourCharCode("auou"),
    .componentSubType = fourCharCode("ahal"),
    .componentManufacturer = fourCharCode("appl")};

} // namespace

SystemAudioHardware::SystemAudioHardware(std::vector<std::unique_ptr<AudioDriver>> drivers)
    : registry(std::move(drivers)) {}

Result<std::vector<AudioObjectID>, SizedReadFailure>
SystemAudioHardware::AudioObjectGetPropertyData(HardwareDevices) {
    return registry.refresh();
}

template <class T>
Result<T, OSStatus> SystemAudioHardware::listed(AudioObjectID id, T AudioDriverDevice::*member) {
    const RegisteredDevice* device = registry.find(id);
    if (device == nullptr) return kAudioHardwareBadObjectError;
    if (!device->listed) return kAudioHardwareBadDeviceError;
    return *device->listed.*member;
}

Result<std::string, OSStatus> SystemAudioHardware::AudioObjectGetPropertyData(DeviceUID property) {
    return listed(property.device, &AudioDriverDevice::uid);
}

Result<std::string, OSStatus> SystemAudioHardware::AudioObjectGetPropertyData(DeviceName property) {
    return listed(property.device, &AudioDriverDevice::name);
}

Result<std::vector<std::uint32_t>, SizedReadFailure>
SystemAudioHardware::AudioObjectGetPropertyData(StreamConfiguration property) {
    const auto channels = listed(
        property.device, property.scope == AudioScope::input ? &AudioDriverDevice::inputChannelCount
                                                             : &AudioDriverDevice::outputChannelCount
    );
    if (!channels) return SizedReadFailure{SizedReadFailure::Step::size, channels.error()};
    // One stream has them all.
    const std::size_t streamCount = channels.value() == 0 ? 0 : 1;
    return std::vector(streamCount, static_cast<std::uint32_t>(channels.value()));
}

Result<double, OSStatus> SystemAudioHardware::AudioObjectGetPropertyData(NominalSampleRate property) {
    return listed(property.device, &AudioDriverDevice::sampleRate);
}

Result<std::uint32_t, OSStatus> SystemAudioHardware::AudioObjectGetPropertyData(BufferFrameSize property) {
    // Notification threads read it, so it goes past the list, which is the main thread's.
    const RegisteredDevice* device = registry.find(property.device);
    if (device == nullptr) return kAudioHardwareBadObjectError;
    return device->driver.bufferSize(device->uid);
}

Result<bool, OSStatus> SystemAudioHardware::AudioObjectGetPropertyData(DeviceIsAlive property) {
    RegisteredDevice* device = registry.find(property.device);
    if (device == nullptr) return kAudioHardwareBadObjectError;
    device->listed = device->driver.device(device->uid);
    return device->listed.has_value();
}

OSStatus SystemAudioHardware::AudioObjectSetPropertyData(BufferFrameSize property, std::uint32_t frameCount) {
    const RegisteredDevice* device = registry.find(property.device);
    if (device == nullptr) return kAudioHardwareBadObjectError;
    return device->driver.requestBufferSize(device->uid, frameCount);
}

Result<std::unique_ptr<AudioDeviceWatch>, OSStatus> SystemAudioHardware::AudioObjectAddPropertyListenerBlock(
    AudioObjectID id, AudioDeviceChange awaited, std::function<void()> block
) {
    const RegisteredDevice* device = registry.find(id);
    if (device == nullptr) return kAudioHardwareBadObjectError;
    return device->driver.watch(device->uid, [awaited, block = std::move(block)](AudioDeviceChange change) {
        if (change == awaited) block();
    });
}

AudioComponent SystemAudioHardware::AudioComponentFindNext(const AudioComponentDescription& description) {
    return description == outputUnitDescription ? outputUnitComponent : 0;
}

Result<std::unique_ptr<AudioUnit>, OSStatus>
SystemAudioHardware::AudioComponentInstanceNew(AudioComponent component) {
    if (component != outputUnitComponent) return kAudio_ParamError;
    return std::unique_ptr<AudioUnit>(std::make_unique<AudioUnitInstance>(registry));
}

} // namespace orvane::platform
