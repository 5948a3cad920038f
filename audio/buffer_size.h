#pragma once

#include "platform/audio_hardware/audio_driver.h"
#include "platform/audio_hardware/audio_hardware.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace orvane::audio {

/// The buffer size that a device runs at after it was asked for one.
struct BufferSizeAgreement {
    /// Frames per cycle.
    std::uint32_t frameCount = 0;
    /// A warning for the person at the screen if the device did not do as it was asked.
    std::optional<std::string> warning;
};

/// Asks a device for a buffer of `requested` frames and reads back the result. Main thread.
BufferSizeAgreement negotiateBufferSize(
    platform::AudioHardware& hardware, platform::AudioObjectID device, std::uint32_t requested
);

/// Called with a device's new buffer size in frames, on the hardware layer's notification thread.
using BufferSizeHandler = std::function<void(std::uint32_t frameCount)>;

/// Calls `handler`, which may be empty, when a running device's buffer size changes to one that was not asked
/// for, until the returned watch is destroyed. Each foreign size is reported once in a row; a return to
/// `requested` neither counts nor makes a foreign one new again. `agreed`, the size that the device runs at,
/// counts as reported. Null if the device cannot be listened to. Main thread.
std::unique_ptr<platform::AudioDeviceWatch> watchBufferSize(
    platform::AudioHardware& hardware, platform::AudioObjectID device, std::uint32_t requested,
    std::uint32_t agreed, BufferSizeHandler handler
);

} // namespace orvane::audio
