#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

namespace orvane::cli {

/// Planar blocks of equal length. One thread at a time.
class SoundBlocks final {
  public:
    using Views = std::vector<std::span<float>>;
    using ConstViews = std::vector<std::span<const float>>;

    SoundBlocks(std::size_t channelCount, std::size_t frameCount)
        : samples(channelCount, std::vector<float>(frameCount)) {}

    /// Returns `frameCount` frames of every channel, starting at `first`.
    [[nodiscard]] Views part(std::size_t first, std::size_t frameCount) {
        Views views;
        for (std::vector<float>& channel : samples)
            views.push_back(std::span(channel).subspan(first, frameCount));
        return views;
    }
    [[nodiscard]] ConstViews part(std::size_t first, std::size_t frameCount) const {
        ConstViews views;
        for (const std::vector<float>& channel : samples)
            views.push_back(std::span(channel).subspan(first, frameCount));
        return views;
    }

    void silenceFrom(std::size_t frame) {
        for (std::vector<float>& channel : samples)
            std::fill(channel.begin() + static_cast<std::ptrdiff_t>(frame), channel.end(), 0.0F);
    }

  private:
    std::vector<std::vector<float>> samples;
};

} // namespace orvane::cli
