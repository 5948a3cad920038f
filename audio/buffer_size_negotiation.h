#pragma once

#include "platform/audio_hardware/audio_hardware.h"

#include <cstdint>
#include <optional>
#include <string>

namespace orvane::audio {

/// What a device and we agreed on.
struct BufferSizeAgreement {
    /// Frames per cycle that the device runs at.
    std::uint32_t frameCount = 0;
    /// What the person at the screen should know, where the device did not do as it was asked.
    std::optional<std::string> warning;
};

/// Where a device's buffer size is read, set and listened to.
inline constexpr platform::AudioObjectPropertyAddress bufferSizeAddress{
    platform::kAudioDevicePropertyBufferFrameSize, platform::kAudioObjectPropertyScopeGlobal, 0};

/// The buffer size that a device runs at now, in frames; nothing where it does not say. Any thread.
std::optional<std::uint32_t>
readBufferSize(platform::AudioHardware& hardware, platform::AudioObjectID device);

/// Asks a device for a buffer of `requested` frames and looks what came of it. Main thread.
BufferSizeAgreement negotiateBufferSize(
    platform::AudioHardware& hardware, platform::AudioObjectID device, std::uint32_t requested
);

} // namespace orvane::audio
