#pragma once

#include "dsp/realtime.h"

#include <atomic>
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
    [[nodiscard]] std::size_t advanced(std::size_t index, std::size_t steps) const noexcept {
        const std::size_t next = index + steps;
        return next < capacity() ? next : next - capacity();
    }

    std::vector<float> buffer;
    /// The producer's, like the total it has stored; the others are the consumer's.
    std::size_t writeIndex = 0;
    std::atomic<std::size_t> stored = 0;
    std::size_t readIndex = 0;
    std::atomic<std::size_t> taken = 0;
};

} // namespace orvane::audio
