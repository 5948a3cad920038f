#include "audio/ring_buffer.h"

#include <algorithm>

namespace orvane::audio {

RingBuffer::RingBuffer(std::int64_t requestedCapacity)
    : buffer(static_cast<std::size_t>(std::max<std::int64_t>(requestedCapacity, 1)), 0.0F) {}

std::size_t RingBuffer::write(std::span<const float> samples) noexcept {
    const std::size_t before = stored.load(std::memory_order_relaxed);
    const std::size_t held = before - taken.load(std::memory_order_acquire);
    const std::size_t count = std::min(capacity() - held, samples.size());
    const std::size_t beforeEnd = std::min(count, capacity() - writeIndex);
    std::copy_n(samples.begin(), beforeEnd, buffer.data() + writeIndex);
    if (beforeEnd < count) std::copy_n(samples.data() + beforeEnd, count - beforeEnd, buffer.begin());
    writeIndex = advanced(writeIndex, count);
    stored.store(before + count, std::memory_order_release);
    return count;
}

std::size_t RingBuffer::read(std::span<float> samples) noexcept {
    const std::size_t before = taken.load(std::memory_order_relaxed);
    const std::size_t held = stored.load(std::memory_order_acquire) - before;
    const std::size_t count = std::min(held, samples.size());
    const std::size_t beforeEnd = std::min(count, capacity() - readIndex);
    std::copy_n(buffer.data() + readIndex, beforeEnd, samples.begin());
    if (beforeEnd < count) std::copy_n(buffer.begin(), count - beforeEnd, samples.data() + beforeEnd);
    if (count < samples.size()) std::ranges::fill(samples.subspan(count), 0.0F);
    readIndex = advanced(readIndex, count);
    taken.store(before + count, std::memory_order_release);
    return count;
}

} // namespace orvane::audio
