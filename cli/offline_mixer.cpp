#include "cli/offline_mixer.h"

#include "audio/render_pass.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace orvane::cli {

namespace {

/// Every ring holds this many blocks.
constexpr std::int64_t ringBlocks = 8;

} // namespace

OfflineMixer::OfflineMixer(const MixerSetup& setup, double sampleRate, std::size_t outputCount)
    : frames(static_cast<std::size_t>(setup.bufferSize)),
      processor(
          setup.strips.size() + 1, sampleRate, sampleRate / static_cast<double>(setup.bufferSize),
          setup.masterTargetDB
      ),
      state(setup.strips.size()) {
    processor.setLeadGroupGainDB(setup.leadGroupGainDB);
    processor.setBackingGroupGainDB(setup.backingGroupGainDB);
    processor.setReleaseMs(setup.duckerReleaseMs);
    std::vector<std::optional<std::int64_t>> inputs;
    std::vector<session::OutputRouting> outputs;
    for (std::size_t i = 0; i < setup.strips.size(); ++i) {
        processor.setSettings(i, automixSettings(setup.strips[i]));
        inputs.push_back(setup.strips[i].inputChannelIndex);
        outputs.push_back(setup.strips[i].outputRouting);
    }
    processor.setSettings(setup.strips.size(), {.excludedFromMasterBus = true});

    state.sampleRate = sampleRate;
    for (std::size_t i = 0; i < outputCount; ++i)
        state.outputRingBuffers.push_back(std::make_unique<audio::RingBuffer>(setup.bufferSize * ringBlocks));
    state.updateRouting(inputs, outputs, setup.masterOutputRouting);
    state.setNoiseGain(setup.referenceNoiseGain);
}

void OfflineMixer::cycle(
    std::span<const std::span<const float>> captured, std::span<const std::span<float>> played
) {
    audio::renderPass(captured, frames, processor, state);
    audio::outputPull(state.outputRingBuffers, played, frames);
}

} // namespace orvane::cli
