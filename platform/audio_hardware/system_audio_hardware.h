#pragma once

#include "platform/audio_hardware/audio_driver.h"
#include "platform/audio_hardware/audio_hardware.h"
#include "platform/audio_hardware/audio_unit_instance.h"
#include "platform/audio_hardware/device_registry.h"

#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace orvane::platform {

/// The audio hardware of this machine, over the drivers it is given.
class SystemAudioHardware final : public AudioHardware {
  public:
    /// Devices are listed in the order of the drivers.
    explicit SystemAudioHardware(std::vector<std::unique_ptr<AudioDriver>> drivers);

    PropertySize
    AudioObjectGetPropertyDataSize(AudioObjectID object, const AudioObjectPropertyAddress& address) override;
    PropertySize AudioObjectGetPropertyData(
        AudioObjectID object, const AudioObjectPropertyAddress& address, std::span<std::byte> data
    ) override;
    OSStatus AudioObjectSetPropertyData(
        AudioObjectID object, const AudioObjectPropertyAddress& address, std::span<const std::byte> data
    ) override;
    ListenerRegistration AudioObjectAddPropertyListenerBlock(
        AudioObjectID object, const AudioObjectPropertyAddress& address,
        AudioObjectPropertyListenerBlock block
    ) override;
    OSStatus AudioObjectRemovePropertyListenerBlock(AudioObjectPropertyListenerID listener) override;

    AudioComponent AudioComponentFindNext(const AudioComponentDescription& description) override;
    NewInstance AudioComponentInstanceNew(AudioComponent component) override;
    OSStatus AudioComponentInstanceDispose(AudioUnit unit) override;
    OSStatus AudioUnitSetProperty(
        AudioUnit unit, std::uint32_t property, std::uint32_t scope, std::uint32_t element,
        std::span<const std::byte> data
    ) override;
    PropertySize AudioUnitGetProperty(
        AudioUnit unit, std::uint32_t property, std::uint32_t scope, std::uint32_t element,
        std::span<std::byte> data
    ) override;
    OSStatus AudioUnitInitialize(AudioUnit unit) override;
    OSStatus AudioUnitUninitialize(AudioUnit unit) override;
    OSStatus AudioOutputUnitStart(AudioUnit unit) override;
    OSStatus AudioOutputUnitStop(AudioUnit unit) override;
    OSStatus AudioUnitRender(
        AudioUnit unit, AudioUnitRenderActionFlags& flags, const AudioTimeStamp& time, std::uint32_t bus,
        std::uint32_t frameCount, AudioBufferList& buffers
    ) noexcept override;

  private:
    /// A value of a property as its bytes, or why there is none.
    struct PropertyValue {
        OSStatus status = noErr;
        std::vector<std::byte> bytes = {};
    };

    PropertyValue read(AudioObjectID object, const AudioObjectPropertyAddress& address);
    PropertyValue readOfSystem(const AudioObjectPropertyAddress& address);
    PropertyValue readOfDevice(AudioObjectID object, const AudioObjectPropertyAddress& address);

    DeviceRegistry registry;
    /// The devices whose size was asked for last, for the query of the list that follows: drivers may take
    /// long to list them.
    std::optional<std::vector<std::byte>> sizedDevices;
    std::vector<std::unique_ptr<AudioUnitInstance>> units;
    AudioObjectPropertyListenerID lastListener = 0;
    std::map<AudioObjectPropertyListenerID, std::unique_ptr<AudioDeviceWatch>> watches;
};

} // namespace orvane::platform
