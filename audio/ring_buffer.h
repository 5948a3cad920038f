#pragma once

#include "dsp/realtime.h"
#include "platform/base/ring_indices.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace orvane::audio {

/// The bounded queue of samples between the render pass and the output callback of one device channel. When
/// it is full the newest samples of an incoming block are dropped; when it runs short silence is played. One
/// producer thread, one consumer thread, neither of which ever waits for the other: a block is there whole
/// or not at all.
class RingBuffer final {
  public:
    /// Room for max(requestedCapacity, 1) samples, allocated here and never again.
    explicit RingBuffer(std::int64_t requestedCapacity);

    [[nodiscard]] std::size_t capacity() const noexcept { return buffer.size(); }

    /// Stores as many samples as fit, from the start of the block; returns how many. Producer, real-time
    /// safe.
    ORVANE_REALTIME std::size_t write(std::span<const float> samples) noexcept;

    /// Takes the oldest samples and fills what is missing with zeros; returns how many were real. Consumer,
    /// real-time safe.
    ORVANE_REALTIME std::size_t read(std::span<float> samples) noexcept;

  private:
    std::vector<float> buffer;
    platform::RingIndices indices;
};

} // namespace orvane::audio
