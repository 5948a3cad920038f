#include "reference_conditions.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <random>

namespace orvane::bench {

namespace {

constexpr double masterTargetDB = -10.0;
constexpr double noiseGain = 0.1;

dsp::ChannelAutomixSettings settingsOf(std::size_t channel, std::size_t strips) {
    if (channel == strips) return {.excludedFromMasterBus = true};
    if (channel % 4 == 1) return {.genderMode = dsp::GenderTriggerMode::male};
    if (channel % 4 == 3) return {.genderMode = dsp::GenderTriggerMode::female};
    return {};
}

session::OutputRouting outputOf(std::size_t strip, std::size_t strips) {
    const auto left = static_cast<std::int64_t>(strip * 2 % strips);
    const double pan = static_cast<double>(strip) / static_cast<double>(strips) * 2.0 - 1.0;
    return session::output::Stereo{left, left + 1, pan};
}

} // namespace

ReferenceConditions::ReferenceConditions(const Shape& wanted)
    : shape(wanted),
      captured(shape.strips, std::vector<float>(shape.frames)),
      fastPlayed(shape.strips, std::vector<float>(shape.frames)),
      plainPlayed(fastPlayed),
      fastViews(viewsOf(fastPlayed)),
      plainViews(viewsOf(plainPlayed)),
      blocks(shape.strips + 1, shape.frames),
      allActive(shape.strips + 1, true),
      automix(
          shape.strips + 1, sampleRate, sampleRate / static_cast<double>(shape.frames), masterTargetDB,
          *shape.kernels
      ),
      state(shape.strips),
      plain({shape.strips, sampleRate, shape.frames, shape.strips, 0}, masterTargetDB) {
    std::mt19937 random(1);
    std::uniform_real_distribution<float> noise(-0.3F, 0.3F);
    for (std::vector<float>& block : captured) {
        std::ranges::generate(block, [&] { return noise(random); });
        capturedViews.emplace_back(block);
        plainBlocks.emplace_back(block.begin(), block.end());
    }
    plainBlocks.emplace_back(shape.frames, 1e-3);
    for (std::size_t channel = 0; channel <= shape.strips; ++channel)
        std::ranges::copy(plainBlocks[channel], blocks[channel].begin());

    std::vector<std::optional<std::int64_t>> inputs;
    std::vector<session::OutputRouting> routings;
    for (std::size_t strip = 0; strip < shape.strips; ++strip) {
        inputs.emplace_back(static_cast<std::int64_t>(strip));
        routings.push_back(outputOf(strip, shape.strips));
    }
    const session::MasterOutputRouting master = session::master_output::Stereo{0, 1};
    for (std::size_t channel = 0; channel <= shape.strips; ++channel) {
        automix.setSettings(channel, settingsOf(channel, shape.strips));
        plain.automix.settings[channel] = settingsOf(channel, shape.strips);
    }
    for (std::size_t channel = 0; channel < shape.strips; ++channel)
        state.outputRingBuffers.push_back(
            std::make_unique<audio::RingBuffer>(static_cast<std::int64_t>(8 * shape.frames))
        );
    state.updateRouting(inputs, routings, master);
    state.setNoiseGain(noiseGain);
    plain.setRouting(inputs, routings, master);
    plain.noiseGain = noiseGain;
}

void ReferenceConditions::runFast() {
    audio::renderPass(capturedViews, shape.frames, automix, state);
    audio::outputPull(state.outputRingBuffers, fastViews, shape.frames);
}

void ReferenceConditions::runPlain() {
    plain.process(capturedViews, shape.frames);
    baseline::PlainMixer::pull(plain.rings, plainViews);
}

void ReferenceConditions::copyBlock() {
    for (std::size_t channel = 0; channel < captured.size(); ++channel)
        std::ranges::copy(captured[channel], fastPlayed[channel].begin());
}

std::vector<std::span<float>> ReferenceConditions::viewsOf(FloatBlocks& blocks) {
    return {blocks.begin(), blocks.end()};
}

} // namespace orvane::bench
