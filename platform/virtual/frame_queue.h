#pragma once

#include "dsp/realtime.h"
#include "platform/base/ring_indices.h"

#include <cstddef>
#include <span>
#include <vector>

namespace orvane::platform::virtual_devices {

/// A bounded queue of frames between an audio thread and a thread that deals with a file. Lock-free; one
/// producer thread, one consumer thread.
class FrameQueue final {
  public:
    /// Room for `channelCount` x `mostFrames` samples, both at least 1, allocated here and never again.
    FrameQueue(std::size_t channelCount, std::size_t mostFrames);

    /// How many frames can be pushed now; only the consumer makes it more. Producer, real-time safe.
    ORVANE_REALTIME [[nodiscard]] std::size_t freeFrames() const noexcept { return indices.writable(); }

    /// Appends as many frames as fit, from the start of `blocks` (channelCount x any number of frames), and
    /// returns how many those were. Producer, real-time safe.
    ORVANE_REALTIME std::size_t push(std::span<const std::span<const float>> blocks) noexcept;

    /// Moves the oldest frames into the start of `blocks` (channelCount x any number of frames), as many as
    /// there are, and returns how many those were. What lies after them stays as it was. Consumer, real-time
    /// safe.
    ORVANE_REALTIME std::size_t pop(std::span<const std::span<float>> blocks) noexcept;

  private:
    std::vector<std::vector<float>> samples;
    RingIndices indices;
};

} // namespace orvane::platform::virtual_devices
