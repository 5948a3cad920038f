#pragma once

#include "platform/audio_hardware/audio_driver.h"
#include "platform/base/result.h"
#include "platform/virtual/virtual_endpoints.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace orvane::platform::virtual_devices {

/// The buffer sizes that virtual devices accept, in frames.
inline constexpr std::uint32_t shortestVirtualBuffer = 16;
inline constexpr std::uint32_t longestVirtualBuffer = 4096;

/// The description of a device for a virtual driver.
struct VirtualDevice {
    /// Returns the buffer size that the device chooses for a requested one, up to `longestVirtualBuffer`, or
    /// the status with which it refuses.
    using BufferSizeAnswer = std::function<Result<std::uint32_t, OSStatus>(std::uint32_t requested)>;

    /// As the driver lists it.
    AudioDriverDevice description;
    /// How much faster its clock runs than its nominal rate, in parts per million.
    double clockOffsetPpm = 0.0;
    /// The initial buffer size in frames, within the limits above.
    std::uint32_t bufferSize = 512;
    /// Silent if null.
    std::shared_ptr<VirtualInput> input = {};
    /// Outputs are discarded if null.
    std::shared_ptr<VirtualOutput> output = {};
    /// Replaces the default, which grants every size within the limits above and refuses others.
    BufferSizeAnswer answerBufferSize = {};
};

} // namespace orvane::platform::virtual_devices
