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

dsp::ChannelAutomixSettings settingsOf(std::size_t channel) {
    if (channel == ReferenceConditions::strips) return {.excludedFromMasterBus = true};
    if (channel % 4 == 1) return {.genderMode = dsp::GenderTriggerMode::male};
    if (channel % 4 == 3) return {.genderMode = dsp::GenderTriggerMode::female};
    return {};
}

session::OutputRouting outputOf(std::size_t strip) {
    const auto left = static_cast<std::int64_t>(strip * 2 % ReferenceConditions::outputs);
    const double pan = static_cast<double>(strip) / ReferenceConditions::strips * 2.0 - 1.0;
    return session::output::Stereo{left, left + 1, pan};
}

} // namespace

ReferenceConditions::ReferenceConditions(std::size_t framesPerBlock)
    : frames(framesPerBlock),
      captured(strips, std::vector<float>(framesPerBlock)),
      fastPlayed(outputs, std::vector<float>(framesPerBlock)),
      plainPlayed(fastPlayed),
      fastViews(viewsOf(fastPlayed)),
      plainViews(viewsOf(plainPlayed)),
      blocks(strips + 1, framesPerBlock),
      allActive(strips + 1, true),
      automix(strips + 1, sampleRate, sampleRate / static_cast<double>(framesPerBlock), masterTargetDB),
      state(strips),
      plain({strips, sampleRate, framesPerBlock, outputs, 0}, masterTargetDB) {
    std::mt19937 random(1);
    std::uniform_real_distribution<float> noise(-0.3F, 0.3F);
    for (std::vector<float>& block : captured) {
        std::ranges::generate(block, [&] { return noise(random); });
        capturedViews.emplace_back(block);
        plainBlocks.emplace_back(block.begin(), block.end());
    }
    plainBlocks.emplace_back(framesPerBlock, 1e-3);
    for (std::size_t channel = 0; channel <= strips; ++channel)
        std::ranges::copy(plainBlocks[channel], blocks[channel].begin());

    std::vector<std::optional<std::int64_t>> inputs;
    std::vector<session::OutputRouting> routings;
    for (std::size_t strip = 0; strip < strips; ++strip) {
        inputs.emplace_back(static_cast<std::int64_t>(strip));
        routings.push_back(outputOf(strip));
    }
    const session::MasterOutputRouting master = session::master_output::Stereo{0, 1};
    for (std::size_t channel = 0; channel <= strips; ++channel) {
        automix.setSettings(channel, settingsOf(channel));
        plain.automix.settings[channel] = settingsOf(channel);
    }
    for (std::size_t channel = 0; channel < outputs; ++channel)
        state.outputRingBuffers.push_back(
            std::make_unique<audio::RingBuffer>(static_cast<std::int64_t>(8 * framesPerBlock))
        );
    state.updateRouting(inputs, routings, master);
    state.setNoiseGain(noiseGain);
    plain.setRouting(inputs, routings, master);
    plain.noiseGain = noiseGain;
}

void ReferenceConditions::runFast() {
    audio::renderPass(capturedViews, frames, automix, state);
    audio::outputPull(state.outputRingBuffers, fastViews, frames);
}

void ReferenceConditions::runPlain() {
    plain.process(capturedViews, frames);
    baseline::PlainMixer::pull(plain.rings, plainViews);
}

void ReferenceConditions::copyBlock() {
    for (std::size_t channel = 0; channel < outputs; ++channel)
        std::ranges::copy(captured[channel], fastPlayed[channel].begin());
}

std::vector<std::span<float>> ReferenceConditions::viewsOf(FloatBlocks& blocks) {
    return {blocks.begin(), blocks.end()};
}

} // namespace orvane::bench
