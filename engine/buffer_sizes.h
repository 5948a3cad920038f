#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace orvane::engine {

/// The block lengths that the mixer offers, in frames.
inline constexpr std::int64_t bufferSizes[] = {32, 64, 96, 128, 192, 256, 512, 768, 1024, 2048};

/// Whether `bufferSize` is one of them.
constexpr bool isBufferSize(std::int64_t bufferSize) {
    return std::ranges::find(bufferSizes, bufferSize) != std::end(bufferSizes);
}

} // namespace orvane::engine
