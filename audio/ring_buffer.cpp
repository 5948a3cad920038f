#include "audio/ring_buffer.h"

#include <algorithm>

namespace orvane::audio {

RingBuffer::RingBuffer(std::int64_t requestedCapacity)
    : buffer(static_cast<std::size_t>(std::max<std::int64_t>(requestedCapacity, 1)), 0.0F),
      indices(buffer.size()) {}

std::size_t RingBuffer::write(std::span<const float> samples) noexcept {
    const std::size_t count = std::min(indices.writable(), samples.size());
    platform::copyIntoRing(samples.data(), buffer.data(), indices.writePart(count));
    indices.commitWrite(count);
    return count;
}

std::size_t RingBuffer::read(std::span<float> samples) noexcept {
    const std::size_t count = std::min(indices.readable(), samples.size());
    platform::copyFromRing(buffer.data(), indices.readPart(count), samples.data());
    std::ranges::fill(samples.subspan(count), 0.0F);
    indices.commitRead(count);
    return count;
}

} // namespace orvane::audio
