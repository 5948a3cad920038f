#pragma once

#include "dsp/realtime.h"

#include <cstddef>
#include <span>
#include <vector>

namespace orvane::platform {

/// Storage for one block per channel, with views of any length from the start. All samples are initially 0.
/// One thread at a time.
class PlanarBlocks final {
  public:
    /// Capacity for `channelCount` x `mostFrames` samples, allocated only here.
    PlanarBlocks(std::size_t channelCount, std::size_t mostFrames);

    [[nodiscard]] std::size_t channelCount() const noexcept { return samples.size(); }

    /// `frameCount` frames of every channel from `first` on, up to the capacity. The view is valid until the
    /// next call. Real-time safe.
    ORVANE_REALTIME std::span<const std::span<float>>
    writable(std::size_t frameCount, std::size_t first = 0) noexcept;

    /// As above, for reading.
    ORVANE_REALTIME std::span<const std::span<const float>>
    readable(std::size_t frameCount, std::size_t first = 0) noexcept;

  private:
    std::vector<std::vector<float>> samples;
    std::vector<std::span<float>> writableViews;
    std::vector<std::span<const float>> readableViews;
};

} // namespace orvane::platform
