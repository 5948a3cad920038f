#include "platform/base/planar_blocks.h"

namespace orvane::platform {

PlanarBlocks::PlanarBlocks(std::size_t channelCount, std::size_t mostFrames)
    : samples(channelCount, std::vector<float>(mostFrames)),
      writableViews(channelCount),
      readableViews(channelCount) {}

std::span<const std::span<float>> PlanarBlocks::writable(std::size_t frameCount, std::size_t first) noexcept {
    for (std::size_t channel = 0; channel < samples.size(); ++channel)
        writableViews[channel] = std::span(samples[channel]).subspan(first, frameCount);
    return writableViews;
}

std::span<const std::span<const float>>
PlanarBlocks::readable(std::size_t frameCount, std::size_t first) noexcept {
    for (std::size_t channel = 0; channel < samples.size(); ++channel)
        readableViews[channel] = std::span(samples[channel]).subspan(first, frameCount);
    return readableViews;
}

} // namespace orvane::platform
