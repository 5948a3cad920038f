#include "soak/voices.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace orvane::soak {

namespace {

/// Powers of two.
constexpr std::size_t noiseLength = 1 << 14;
constexpr std::size_t longestWord = 1 << 16;

constexpr float overload = 1000.0F;
constexpr float denormal = 1e-40F;

float levelFor(Voices::Trouble trouble) noexcept {
    switch (trouble) {
    case Voices::Trouble::silence:
        return 0.0F;
    case Voices::Trouble::overload:
        return overload;
    case Voices::Trouble::denormal:
        return denormal;
    default:
        return 1.0F;
    }
}

} // namespace

Voices::Voices(std::size_t channelCount, std::uint32_t seed)
    : noise(noiseLength), voices(channelCount), state(seed | 1U) {
    for (float& sample : noise)
        sample = static_cast<float>(draw()) / static_cast<float>(1U << 31U) - 1.0F;
}

void Voices::fill(std::span<const std::span<float>> blocks) noexcept {
    const Trouble now = trouble.load();
    for (std::size_t channel = 0; channel < blocks.size(); ++channel) {
        speak(voices[channel], blocks[channel]);
        if (now == Trouble::none) continue;
        for (float& sample : blocks[channel])
            sample *= levelFor(now);
        if (now == Trouble::notNumbers && channel % 2 == 0) {
            blocks[channel].front() = std::numeric_limits<float>::quiet_NaN();
            blocks[channel].back() = std::numeric_limits<float>::infinity();
        }
    }
    if (played.size() != blocks.size()) played.resize(blocks.size());
    std::ranges::copy(blocks, played.begin());
}

void Voices::speak(Voice& voice, std::span<float> block) noexcept {
    if (voice.framesLeft < block.size()) {
        voice.framesLeft = block.size() + (draw() >> 8U) % longestWord;
        const auto loudness = static_cast<float>((draw() >> 8U) % 64);
        voice.level = draw() >> 30U == 0 ? 0.0F : std::pow(10.0F, -loudness / 20.0F);
        voice.position = (draw() >> 8U) % noiseLength;
    }
    voice.framesLeft -= block.size();
    for (float& sample : block) {
        sample = voice.level * noise[voice.position];
        voice.position = (voice.position + 1) & (noiseLength - 1);
    }
}

/// A linear congruential generator; only its high bits are random enough.
std::uint32_t Voices::draw() noexcept {
    state = state * 1664525U + 1013904223U;
    return state;
}

} // namespace orvane::soak
