#pragma once

#include "platform/virtual/virtual_endpoints.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

namespace orvane::test {

inline constexpr double steadyLevel = 0.25;

/// An input with a steady square wave on every channel.
struct SteadyInput final : platform::virtual_devices::VirtualInput {
    void fill(std::span<const std::span<float>> blocks) noexcept override {
        for (const std::span<float>& block : blocks)
            for (std::size_t i = 0; i < block.size(); ++i)
                block[i] = static_cast<float>(i % 2 == 0 ? steadyLevel : -steadyLevel);
    }
};

/// Records the first and the last sample of each output in its last cycle.
struct KeptOutput final : platform::virtual_devices::VirtualOutput {
    void take(std::span<const std::span<const float>> blocks) noexcept override {
        for (std::size_t channel = 0; channel < std::min(blocks.size(), played.size()); ++channel) {
            played[channel] = blocks[channel].front();
            playedLast[channel] = blocks[channel].back();
        }
    }

    std::array<float, 8> played{};
    std::array<float, 8> playedLast{};
};

} // namespace orvane::test
