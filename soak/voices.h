#pragma once

#include "platform/virtual/virtual_input.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace orvane::soak {

/// People who talk and fall silent into the inputs of a device, each at a level and for a time of their own,
/// and what can go wrong with them. The same seed gives the same sound.
class Voices final : public platform::virtual_devices::VirtualInput {
  public:
    enum class Trouble {
        none,
        /// Every input is dead.
        silence,
        /// Far beyond full scale.
        overload,
        /// So quiet that the numbers are denormal.
        denormal,
        /// Infinities and what is not a number among the samples, as broken programs send.
        notNumbers,
    };

    Voices(std::size_t channelCount, std::uint32_t seed);

    void fill(std::span<const std::span<float>> blocks) noexcept override;

    /// Any thread.
    void set(Trouble next) noexcept { trouble.store(next); }

    /// What was last played; holds until the stream stops. Stepping thread.
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
