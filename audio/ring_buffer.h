#pragma once

#include "dsp/realtime.h"
#include "platform/base/ring_indices.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace orvane::audio {

/// The bounded queue of samples between the render pass and the output callback of one device channel. If it
/// is full, the newest samples of an incoming block are dropped; if it runs short, silence is played. One
/// producer thread and one consumer thread, which never wait for each other: a block becomes visible whole or
/// not at all.
class RingBuffer final {
  public:
    /// Allocates room for max(requestedCapacity, 1) samples; no later call allocates.
    explicit RingBuffer(std::int64_t requestedCapacity);

    [[nodiscard]] std::size_t capacity() const noexcept { return buffer.size(); }

    /// Stores as many samples as fit, from the start of the block. Returns their number. Producer thread,
    /// real-time safe.
    ORVANE_REALTIME std::size_t write(std::span<const float> samples) noexcept;

    /// Takes the oldest samples and fills the rest of the block with zeros. Returns the number of samples
    /// taken. Consumer thread, real-time safe.
    ORVANE_REALTIME std::size_t read(std::span<float> samples) noexcept;

  private:
    std::vector<float> buffer;
    platform::RingIndices indices;
};

} // namespace orvane::audio
