#include "platform/virtual/frame_queue.h"

#include <algorithm>

namespace orvane::platform::virtual_devices {

FrameQueue::FrameQueue(std::size_t channelCount, std::size_t mostFrames)
    : samples(channelCount, std::vector<float>(mostFrames)), indices(mostFrames) {}

std::size_t FrameQueue::push(std::span<const std::span<const float>> blocks) noexcept {
    const std::size_t count = std::min(blocks.front().size(), freeFrames());
    for (std::size_t channel = 0; channel < samples.size(); ++channel)
        copyIntoRing(blocks[channel].data(), samples[channel].data(), indices.writePart(count));
    indices.commitWrite(count);
    return count;
}

std::size_t FrameQueue::pop(std::span<const std::span<float>> blocks) noexcept {
    const std::size_t count = std::min(blocks.front().size(), indices.readable());
    for (std::size_t channel = 0; channel < samples.size(); ++channel)
        copyFromRing(samples[channel].data(), indices.readPart(count), blocks[channel].data());
    indices.commitRead(count);
    return count;
}

} // namespace orvane::platform::virtual_devices
