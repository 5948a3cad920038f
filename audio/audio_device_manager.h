#pragma once

#include "audio/audio_device_info.h"
#include "platform/audio_hardware/audio_hardware.h"
#include "platform/base/os_status.h"
#include "platform/base/result.h"

#include <string>
#include <vector>

namespace orvane::audio {

/// Why the hardware layer could not be asked about its devices. A plain value.
struct AudioDeviceManagerError { // NOLINT(clang-analyzer-core.uninitialized.Assign): a false positive
    platform::OSStatus status = platform::noErr;
    /// The query that failed.
    std::string what;

    /// For the person at the screen.
    [[nodiscard]] std::string description() const;

    bool operator==(const AudioDeviceManagerError&) const = default;
};

/// Lists and describes the devices of a hardware layer. Stateless: every call queries it afresh. Main thread.
class AudioDeviceManager final {
  public:
    template <class T>
    using Result = platform::Result<T, AudioDeviceManagerError>;

    /// `audioHardware` must outlive it.
    explicit AudioDeviceManager(platform::AudioHardware& audioHardware) : hardware(audioHardware) {}

    /// Every device in the hardware layer's order. A device that cannot be described in full is left out;
    /// fails only if the list itself cannot be read.
    Result<std::vector<AudioDeviceInfo>> allDevices();

    /// One device as it is now, queried alone. Fails if it is gone or cannot be described in full.
    Result<AudioDeviceInfo> device(platform::AudioObjectID id);

  private:
    Result<AudioDeviceInfo> describe(platform::AudioObjectID device);

    platform::AudioHardware& hardware;
};

} // namespace orvane::audio
