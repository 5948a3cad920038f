#pragma once

#include "platform/audio_hardware/audio_driver.h"
#include "platform/audio_hardware/audio_hardware.h"
#include "platform/audio_hardware/device_registry.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace orvane::platform {

/// The audio hardware of this machine, over the drivers it is given.
class SystemAudioHardware final : public AudioHardware {
  public:
    /// Devices are listed in the order of the drivers.
    explicit SystemAudioHardware(std::vector<std::unique_ptr<AudioDriver>> drivers);

    Result<std::vector<AudioObjectID>, SizedReadFailure> AudioObjectGetPropertyData(HardwareDevices) override;
    Result<std::string, OSStatus> AudioObjectGetPropertyData(DeviceUID property) override;
    Result<std::string, OSStatus> AudioObjectGetPropertyData(DeviceName property) override;
    Result<std::vector<std::uint32_t>, SizedReadFailure>
    AudioObjectGetPropertyData(StreamConfiguration property) override;
    Result<double, OSStatus> AudioObjectGetPropertyData(NominalSampleRate property) override;
    Result<std::uint32_t, OSStatus> AudioObjectGetPropertyData(BufferFrameSize property) override;
    Result<bool, OSStatus> AudioObjectGetPropertyData(DeviceIsAlive property) override;
    OSStatus AudioObjectSetPropertyData(BufferFrameSize property, std::uint32_t frameCount) override;
    Result<std::unique_ptr<AudioDeviceWatch>, OSStatus> AudioObjectAddPropertyListenerBlock(
        AudioObjectID device, AudioDeviceChange change, std::function<void()> block
    ) override;
    AudioComponent AudioComponentFindNext(const AudioComponentDescription& description) override;
    Result<std::unique_ptr<AudioUnit>, OSStatus> AudioComponentInstanceNew(AudioComponent component) override;

  private:
    /// A member of a device's description as it was listed last.
    template <class T>
    Result<T, OSStatus> listed(AudioObjectID id, T AudioDriverDevice::*member);

    DeviceRegistry registry;
};

} // namespace orvane::platform
