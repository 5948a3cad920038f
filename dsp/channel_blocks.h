#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
#include <span>

namespace orvane::dsp {

/// One block of samples per channel, channelCount x frameCount. Each channel is contiguous and starts on a
/// cache line of its own. Used by one thread at a time.
template <class Sample>
class ChannelBlocks final {
  public:
    ChannelBlocks() = default;

    ChannelBlocks(std::size_t channelCount, std::size_t frameCount) { reshape(channelCount, frameCount); }

    /// Takes the shape and sets every sample to zero. Allocates only if the blocks outgrow all earlier ones.
    void reshape(std::size_t channelCount, std::size_t frameCount) {
        const std::size_t newStride = strideFor(frameCount);
        const std::size_t needed = channelCount * newStride;
        if (needed > capacity) {
            storage.reset(static_cast<Sample*>(::operator new(needed * sizeof(Sample), cacheLine)));
            capacity = needed;
        }
        channels = channelCount;
        frames = frameCount;
        stride = newStride;
        std::fill_n(storage.get(), needed, Sample{});
    }

    /// Real-time safe, like all functions below.
    [[nodiscard]] std::size_t channelCount() const noexcept { return channels; }
    [[nodiscard]] std::size_t frameCount() const noexcept { return frames; }

    [[nodiscard]] std::span<Sample> operator[](std::size_t channel) noexcept {
        return {storage.get() + channel * stride, frames};
    }
    [[nodiscard]] std::span<const Sample> operator[](std::size_t channel) const noexcept {
        return {storage.get() + channel * stride, frames};
    }

  private:
    static constexpr std::align_val_t cacheLine{64};

    /// Rounds up to whole cache lines and adds one: channels a power of two apart would all start in the same
    /// few cache sets and evict each other.
    static std::size_t strideFor(std::size_t frameCount) {
        constexpr std::size_t samplesPerLine = static_cast<std::size_t>(cacheLine) / sizeof(Sample);
        return (frameCount + samplesPerLine - 1) / samplesPerLine * samplesPerLine + samplesPerLine;
    }

    struct Free {
        void operator()(Sample* samples) const noexcept { ::operator delete(samples, cacheLine); }
    };

    std::unique_ptr<Sample, Free> storage;
    std::size_t capacity = 0;
    std::size_t channels = 0;
    std::size_t frames = 0;
    std::size_t stride = 0;
};

} // namespace orvane::dsp
