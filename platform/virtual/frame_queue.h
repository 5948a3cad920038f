#pragma once

#include "dsp/realtime.h"
#include "platform/base/ring_indices.h"

#include <cstddef>
#include <span>
#include <vector>

namespace orvane::platform::virtual_devices {

/// A bounded queue of frames between an audio thread and a thread that handles a file. Lock-free; one
/// producer thread, one consumer thread.
class FrameQueue final {
  public:
    /// Capacity for `channelCount` x `mostFrames` samples, both at least 1, allocated only here.
    FrameQueue(std::size_t channelCount, std::size_t mostFrames);

    /// The number of frames that can be pushed now; only the consumer increases it. Producer, real-time safe.
    ORVANE_REALTIME [[nodiscard]] std::size_t freeFrames() const noexcept { return indices.writable(); }

    /// Appends as many frames as fit, from the start of `blocks` (channelCount x any number of frames), and
    /// returns their number. Producer, real-time safe.
    ORVANE_REALTIME std::size_t push(std::span<const std::span<const float>> blocks) noexcept;

    /// Moves the oldest frames, as many as available, to the start of `blocks` (channelCount x any number of
    /// frames) and returns their number. The rest of `blocks` is unchanged. Consumer, real-time safe.
    ORVANE_REALTIME std::size_t pop(std::span<const std::span<float>> blocks) noexcept;

  private:
    std::vector<std::vector<float>> samples;
    RingIndices indices;
};

} // namespace orvane::platform::virtual_devices
