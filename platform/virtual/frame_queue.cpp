#include "platform/virtual/frame_queue.h"

#include <algorithm>

namespace orvane::platform::virtual_devices {

FrameQueue::FrameQueue(std::size_t channelCount, std::size_t mostFrames)
    : capacity(mostFrames), samples(channelCount, std::vector<float>(mostFrames)) {}

std::size_t FrameQueue::freeFrames() const noexcept {
    return capacity - (pushed.load(std::memory_order_relaxed) - popped.load(std::memory_order_acquire));
}

std::size_t FrameQueue::push(std::span<const std::span<const float>> blocks) noexcept {
    const std::size_t position = pushed.load(std::memory_order_relaxed);
    const std::size_t count = std::min(blocks.front().size(), freeFrames());
    const std::size_t start = position % capacity;
    const std::size_t untilEnd = std::min(count, capacity - start);
    for (std::size_t channel = 0; channel < samples.size(); ++channel) {
        const float* const from = blocks[channel].data();
        std::copy_n(from, untilEnd, samples[channel].data() + start);
        std::copy_n(from + untilEnd, count - untilEnd, samples[channel].data());
    }
    pushed.store(position + count, std::memory_order_release);
    return count;
}

std::size_t FrameQueue::pop(std::span<const std::span<float>> blocks) noexcept {
    const std::size_t position = popped.load(std::memory_order_relaxed);
    const std::size_t held = pushed.load(std::memory_order_acquire) - position;
    const std::size_t count = std::min(blocks.front().size(), held);
    const std::size_t start = position % capacity;
    const std::size_t untilEnd = std::min(count, capacity - start);
    for (std::size_t channel = 0; channel < samples.size(); ++channel) {
        const float* const from = samples[channel].data();
        std::copy_n(from + start, untilEnd, blocks[channel].data());
        std::copy_n(from, count - untilEnd, blocks[channel].data() + untilEnd);
    }
    popped.store(position + count, std::memory_order_release);
    return count;
}

} // namespace orvane::platform::virtual_devices
