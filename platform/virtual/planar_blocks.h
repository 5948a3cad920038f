#pragma once

#include "dsp/realtime.h"

#include <cstddef>
#include <span>
#include <vector>

namespace orvane::platform::virtual_devices {

/// Room for one block per channel, and views of any part of it from the start. All samples are 0 at first.
/// One thread at a time.
class PlanarBlocks final {
  public:
    /// Room for `channelCount` x `mostFrames` samples, allocated here and never again.
    PlanarBlocks(std::size_t channelCount, std::size_t mostFrames);

    [[nodiscard]] std::size_t channelCount() const noexcept { return samples.size(); }

    /// The first `frameCount` frames of every channel, up to the most there is room for. The view holds until
    /// the next one is asked for. Real-time safe.
    ORVANE_REALTIME std::span<const std::span<float>> writable(std::size_t frameCount) noexcept;

    /// The same, to be read.
    ORVANE_REALTIME std::span<const std::span<const float>> readable(std::size_t frameCount) noexcept;

  private:
    std::vector<std::vector<float>> samples;
    std::vector<std::span<float>> writableViews;
    std::vector<std::span<const float>> readableViews;
};

} // namespace orvane::platform::virtual_devices
