#pragma once

#include "platform/virtual/virtual_endpoints.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace orvane::soak {

/// Voices on the inputs of a device, which talk and fall silent, each at its own level and for its own time;
/// with faults to inject. The same seed gives the same signal.
class Voices final : public platform::virtual_devices::VirtualInput {
  public:
    enum class Trouble {
        none,
        /// Every input is silent.
        silence,
        /// Far beyond full scale.
        overload,
        /// Quiet enough for denormal numbers.
        denormal,
        /// Infinities and NaNs among the samples, as faulty programs send them.
        notNumbers,
    };

    Voices(std::size_t channelCount, std::uint32_t seed);

    void fill(std::span<const std::span<float>> blocks) noexcept override;

    /// Any thread.
    void set(Trouble next) noexcept { trouble.store(next); }

    /// The last blocks played; valid until the stream stops. Stepping thread.
    [[nodiscard]] std::span<const std::span<float>> lastBlocks() const noexcept { return played; }

  private:
    struct Voice {
        std::size_t framesLeft = 0;
        std::size_t position = 0;
        float level = 0.0F;
    };

    void speak(Voice& voice, std::span<float> block) noexcept;
    std::uint32_t draw() noexcept;

    std::vector<float> noise;
    std::vector<Voice> voices;
    std::vector<std::span<float>> played;
    std::uint32_t state;
    std::atomic<Trouble> trouble = Trouble::none;
};

} // namespace orvane::soak
