#include "audio/ring_buffer.h"

#include <algorithm>
#include <mutex>

namespace orvane::audio {

RingBuffer::RingBuffer(std::int64_t requestedCapacity)
    : buffer(static_cast<std::size_t>(std::max<std::int64_t>(requestedCapacity, 1)), 0.0F) {}

std::size_t RingBuffer::write(std::span<const float> samples) noexcept {
    const std::scoped_lock guard(lock);
    const std::size_t stored = std::min(capacity() - count, samples.size());
    const std::size_t beforeEnd = std::min(stored, capacity() - writeIndex);
    std::copy_n(samples.begin(), beforeEnd, buffer.data() + writeIndex);
    std::copy_n(samples.data() + beforeEnd, stored - beforeEnd, buffer.begin());
    writeIndex = (writeIndex + stored) % capacity();
    count += stored;
    return stored;
}

std::size_t RingBuffer::read(std::span<float> samples) noexcept {
    const std::scoped_lock guard(lock);
    const std::size_t delivered = std::min(count, samples.size());
    const std::size_t beforeEnd = std::min(delivered, capacity() - readIndex);
    std::copy_n(buffer.data() + readIndex, beforeEnd, samples.begin());
    std::copy_n(buffer.begin(), delivered - beforeEnd, samples.data() + beforeEnd);
    std::ranges::fill(samples.subspan(delivered), 0.0F);
    readIndex = (readIndex + delivered) % capacity();
    count -= delivered;
    return delivered;
}

} // namespace orvane::audio
