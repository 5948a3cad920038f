#include "platform/audio_hardware/system_audio_hardware.h"

#include "platform/audio_hardware/property_bytes.h"
#include "platform/base/abandoned.h"

#include <algorithm>
#include <utility>

namespace orvane::platform {

namespace {

constexpr AudioComponent outputUnitComponent = 1;

bool matches(std::uint32_t wanted, std::uint32_t present) {
    return wanted == 0 || wanted == present;
}

template <class Value>
std::vector<std::byte> copyOf(const Value& value) {
    const std::span<const std::byte> bytes = bytesOf(value);
    return {bytes.begin(), bytes.end()};
}

/// The streams of a device in one direction: one, with all its channels.
std::vector<std::byte> streamConfiguration(std::size_t channelCount) {
    if (channelCount == 0) return {};
    std::vector<std::byte> bytes = copyOf(StreamConfigurationHeader{.mNumberBuffers = 1});
    const std::vector<std::byte> buffer =
        copyOf(AudioBuffer{.mNumberChannels = static_cast<std::uint32_t>(channelCount)});
    bytes.insert(bytes.end(), buffer.begin(), buffer.end());
    return bytes;
}

/// What a listener to a device's property waits for; nothing where it cannot be listened to.
std::optional<AudioDeviceChange> changeOf(std::uint32_t selector) {
    switch (selector) {
    case kAudioDevicePropertyBufferFrameSize:
        return AudioDeviceChange::bufferSize;
    case kAudioDevicePropertyNominalSampleRate:
        return AudioDeviceChange::sampleRate;
    case kAudioDevicePropertyStreamConfiguration:
        return AudioDeviceChange::lostChannels;
    case kAudioDevicePropertyDeviceIsAlive:
        return AudioDeviceChange::died;
    default:
        return std::nullopt;
    }
}

} // namespace

SystemAudioHardware::SystemAudioHardware(std::vector<std::unique_ptr<AudioDriver>> drivers)
    : registry(std::move(drivers)) {}

PropertySize SystemAudioHardware::AudioObjectGetPropertyDataSize(
    AudioObjectID object, const AudioObjectPropertyAddress& address
) {
    sizedDevices.reset();
    PropertyValue value = read(object, address);
    const auto size = static_cast<std::uint32_t>(value.bytes.size());
    if (object == kAudioObjectSystemObject && value.status == noErr) sizedDevices = std::move(value.bytes);
    return {value.status, size};
}

PropertySize SystemAudioHardware::AudioObjectGetPropertyData(
    AudioObjectID object, const AudioObjectPropertyAddress& address, std::span<std::byte> data
) {
    PropertyValue value = read(object, address);
    if (value.status != noErr) return {value.status, 0};
    // As many of the devices as there is room for.
    if (object == kAudioObjectSystemObject)
        value.bytes.resize(std::min(value.bytes.size(), data.size() - data.size() % sizeof(AudioObjectID)));
    if (data.size() < value.bytes.size()) return {kAudioHardwareBadPropertySizeError, 0};
    std::ranges::copy(value.bytes, data.begin());
    return {noErr, static_cast<std::uint32_t>(value.bytes.size())};
}

SystemAudioHardware::PropertyValue
SystemAudioHardware::read(AudioObjectID object, const AudioObjectPropertyAddress& address) {
    return object == kAudioObjectSystemObject ? readOfSystem(address) : readOfDevice(object, address);
}

SystemAudioHardware::PropertyValue SystemAudioHardware::readOfSystem(const AudioObjectPropertyAddress& address
) {
    if (address
        != AudioObjectPropertyAddress{kAudioHardwarePropertyDevices, kAudioObjectPropertyScopeGlobal, 0})
        return {kAudioHardwareUnknownPropertyError};
    if (sizedDevices) return {noErr, *std::exchange(sizedDevices, std::nullopt)};
    const std::vector<AudioObjectID> ids = registry.refresh();
    const std::span<const std::byte> bytes = std::as_bytes(std::span(ids));
    return {noErr, {bytes.begin(), bytes.end()}};
}

SystemAudioHardware::PropertyValue
SystemAudioHardware::readOfDevice(AudioObjectID object, const AudioObjectPropertyAddress& address) {
    const std::optional<RegisteredDevice> registered = registry.find(object);
    if (!registered) return {kAudioHardwareBadObjectError};
    // The one property that notification threads ask for; it goes past the list, which is the main thread's.
    if (address.mSelector == kAudioDevicePropertyBufferFrameSize) {
        const auto frames = registered->driver->bufferSize(*registered->uid);
        return frames ? PropertyValue{noErr, copyOf(frames.value())} : PropertyValue{frames.error()};
    }
    if (address.mSelector == kAudioDevicePropertyDeviceIsAlive)
        return {noErr, copyOf(std::uint32_t{registry.refresh(object) ? 1U : 0U})};
    const std::optional<AudioDriverDevice> device = registry.describe(object);
    if (!device) return {kAudioHardwareBadDeviceError};
    switch (address.mSelector) {
    case kAudioDevicePropertyDeviceUID:
        return {noErr, copyOf(registered->uid)};
    case kAudioObjectPropertyName:
        return {noErr, copyOf(registry.intern(device->name))};
    case kAudioDevicePropertyNominalSampleRate:
        return {noErr, copyOf(device->sampleRate)};
    case kAudioDevicePropertyStreamConfiguration:
        return {
            noErr, streamConfiguration(
                       address.mScope == kAudioObjectPropertyScopeInput ? device->inputChannelCount
                                                                        : device->outputChannelCount
                   )};
    default:
        return {kAudioHardwareUnknownPropertyError};
    }
}

OSStatus SystemAudioHardware::AudioObjectSetPropertyData(
    AudioObjectID object, const AudioObjectPropertyAddress& address, std::span<const std::byte> data
) {
    const std::optional<RegisteredDevice> device = registry.find(object);
    if (!device) return kAudioHardwareBadObjectError;
    if (address.mSelector != kAudioDevicePropertyBufferFrameSize)
        return kAudioHardwareUnsupportedOperationError;
    std::uint32_t frames = 0;
    if (const OSStatus status = assignFrom(data, frames, kAudioHardwareBadPropertySizeError); status != noErr)
        return status;
    return device->driver->requestBufferSize(*device->uid, frames);
}

AudioHardware::ListenerRegistration SystemAudioHardware::AudioObjectAddPropertyListenerBlock(
    AudioObjectID object, const AudioObjectPropertyAddress& address, AudioObjectPropertyListenerBlock block
) {
    const std::optional<RegisteredDevice> device = registry.find(object);
    if (!device) return {kAudioHardwareBadObjectError, 0};
    const std::optional<AudioDeviceChange> awaited = changeOf(address.mSelector);
    if (!awaited) return {kAudioHardwareUnknownPropertyError, 0};
    watches.emplace(
        ++lastListener,
        device->driver->watch(
            *device->uid,
            [awaited = *awaited, address, listener = std::move(block)](AudioDeviceChange change) {
                if (change == awaited) listener(std::span(&address, 1));
            }
        )
    );
    return {noErr, lastListener};
}

OSStatus SystemAudioHardware::AudioObjectRemovePropertyListenerBlock(AudioObjectPropertyListenerID listener) {
    return watches.erase(listener) == 1 ? noErr : kAudioHardwareIllegalOperationError;
}

AudioComponent SystemAudioHardware::AudioComponentFindNext(const AudioComponentDescription& description) {
    const bool isOutputUnit = matches(description.componentType, fourCharCode("auou"))
                              && matches(description.componentSubType, fourCharCode("ahal"))
                              && matches(description.componentManufacturer, fourCharCode("appl"));
    return isOutputUnit ? outputUnitComponent : 0;
}

AudioHardware::NewInstance SystemAudioHardware::AudioComponentInstanceNew(AudioComponent component) {
    if (component != outputUnitComponent) return {kAudio_ParamError, nullptr};
    units.push_back(std::make_unique<AudioUnitInstance>(registry));
    return {noErr, units.back().get()};
}

OSStatus SystemAudioHardware::AudioComponentInstanceDispose(AudioUnit unit) {
    return std::erase_if(units, [unit](const auto& held) { return held.get() == unit; }) == 1
               ? noErr
               : kAudio_ParamError;
}

OSStatus SystemAudioHardware::AudioUnitSetProperty(
    AudioUnit unit, std::uint32_t property, std::uint32_t scope, std::uint32_t element,
    std::span<const std::byte> data
) {
    return unit->setProperty(property, scope, element, data);
}

PropertySize SystemAudioHardware::AudioUnitGetProperty(
    AudioUnit unit, std::uint32_t property, std::uint32_t scope, std::uint32_t element,
    std::span<std::byte> data
) {
    return unit->getProperty(property, scope, element, data);
}

OSStatus SystemAudioHardware::AudioUnitInitialize(AudioUnit unit) {
    return unit->initialize();
}

OSStatus SystemAudioHardware::AudioUnitUninitialize(AudioUnit unit) {
    return unit->uninitialize();
}

OSStatus SystemAudioHardware::AudioOutputUnitStart(AudioUnit unit) {
    return unit->start();
}

OSStatus SystemAudioHardware::AudioOutputUnitStop(AudioUnit unit) {
    const OSStatus status = unit->stop();
    if (status != kAudioUnitErr_CallbackAbandoned) return status;
    const auto held = std::ranges::find(units, unit, &std::unique_ptr<AudioUnitInstance>::get);
    abandon(std::move(*held));
    units.erase(held);
    return status;
}

OSStatus SystemAudioHardware::AudioUnitRender(
    AudioUnit unit, AudioUnitRenderActionFlags&, const AudioTimeStamp&, std::uint32_t bus,
    std::uint32_t frameCount, AudioBufferList& buffers
) noexcept {
    return unit->renderInput(bus, frameCount, buffers);
}

} // namespace orvane::platform
