#include "platform/virtual/looped_samples.h"

#include <algorithm>
#include <span>
#include <utility>

namespace orvane::platform::virtual_devices {

Result<std::unique_ptr<VirtualInput>> LoopedSamples::decode(SoundFileReader& reader) {
    const auto frames = static_cast<std::size_t>(reader.frameCount());
    std::vector<std::vector<float>> whole(reader.channelCount(), std::vector<float>(frames));
    const std::vector<std::span<float>> blocks(whole.begin(), whole.end());
    if (const auto read = reader.read(blocks); !read) return read.error();
    return std::unique_ptr<VirtualInput>(std::make_unique<LoopedSamples>(std::move(whole)));
}

LoopedSamples::LoopedSamples(std::vector<std::vector<float>> loop) : samples(std::move(loop)) {}

Result<Done> LoopedSamples::start(VirtualPacing) {
    position = 0;
    return Done{};
}

void LoopedSamples::fill(std::span<const std::span<float>> blocks) noexcept {
    const std::size_t wanted = blocks.front().size();
    const std::size_t length = samples.front().size();
    for (std::size_t done = 0; done < wanted;) {
        const std::size_t part = std::min(wanted - done, length - position);
        for (std::size_t channel = 0; channel < blocks.size(); ++channel)
            std::copy_n(samples[channel].data() + position, part, blocks[channel].data() + done);
        done += part;
        position = (position + part) % length;
    }
}

} // namespace orvane::platform::virtual_devices
