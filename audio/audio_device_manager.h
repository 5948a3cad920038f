#pragma once

#include "audio/audio_device_info.h"
#include "platform/audio_hardware/audio_hardware.h"
#include "platform/base/os_status.h"
#include "platform/base/result.h"

#include <cstdint>
#include <string>
#include <vector>

namespace orvane::audio {

/// Why the hardware layer could not be asked about its devices. A plain value.
struct AudioDeviceManagerError { // NOLINT(clang-analyzer-core.uninitialized.Assign): not so
    platform::OSStatus status = platform::noErr;
    /// The query that failed.
    std::string what;

    static AudioDeviceManagerError propertyQueryFailed(platform::OSStatus status, std::string what);

    /// For the person at the screen.
    [[nodiscard]] std::string description() const;

    bool operator==(const AudioDeviceManagerError&) const = default;
};

/// Lists and describes the devices of a hardware layer. Keeps nothing: every call asks afresh. Made where it
/// is needed. Main thread.
class AudioDeviceManager final {
  public:
    template <class T>
    using Result = platform::Result<T, AudioDeviceManagerError>;

    /// `audioHardware` outlives it.
    explicit AudioDeviceManager(platform::AudioHardware& audioHardware) : hardware(audioHardware) {}

    /// Every device in the hardware layer's order. A device that cannot be described in full is left out;
    /// fails only where the list itself cannot be read.
    Result<std::vector<AudioDeviceInfo>> allDevices();

    /// One device as it is now, asked without any other. Fails if it is gone or cannot be described in full.
    Result<AudioDeviceInfo> device(platform::AudioObjectID id);

    /// Channels over all streams of a device in `scope`, input or output; 0 where it has no streams there.
    Result<std::int64_t> channelCount(platform::AudioObjectID device, std::uint32_t scope);

    /// A property of global scope whose value is text.
    Result<std::string> stringProperty(platform::AudioObjectID object, std::uint32_t selector);

    /// A property of global scope whose value is a double.
    Result<double> doubleProperty(platform::AudioObjectID object, std::uint32_t selector);

  private:
    Result<AudioDeviceInfo> describe(platform::AudioObjectID device);

    platform::AudioHardware& hardware;
};

} // namespace orvane::audio
