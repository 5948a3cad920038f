#pragma once

#include "platform/audio_hardware/audio_driver.h"
#include "platform/base/result.h"
#include "platform/virtual/virtual_input.h"
#include "platform/virtual/virtual_output.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace orvane::platform::virtual_devices {

/// The buffer sizes that virtual devices accept, in frames.
inline constexpr std::uint32_t shortestVirtualBuffer = 16;
inline constexpr std::uint32_t longestVirtualBuffer = 4096;

/// What a virtual driver needs to know about one of its devices.
struct VirtualDevice {
    /// The buffer size that the device runs at after it was asked for another one, up to
    /// `longestVirtualBuffer`, or the status that it refuses with.
    using BufferSizeAnswer = std::function<Result<std::uint32_t, OSStatus>(std::uint32_t requested)>;

    /// As the driver lists it.
    AudioDriverDevice description;
    /// How much faster its clock runs than the rate it states, in parts per million.
    double clockOffsetPpm = 0.0;
    /// In frames, from the shortest to the longest, until another one is asked for.
    std::uint32_t bufferSize = 512;
    /// Silence where there is none.
    std::shared_ptr<VirtualInput> input = {};
    /// Nobody listens where there is none.
    std::shared_ptr<VirtualOutput> output = {};
    /// Stands in for the device's own answer, which grants every size from the shortest to the longest and
    /// refuses others.
    BufferSizeAnswer answerBufferSize = {};
};

} // namespace orvane::platform::virtual_devices
