#pragma once

#include "audio/mixer_realtime_state.h"
#include "cli/mixer_setup.h"
#include "dsp/automix_processor.h"

#include <cstddef>
#include <span>

namespace orvane::cli {

/// The mixer on a device that is as fast as it is asked: the same processor, render pass and rings as on an
/// interface, one block at a time. One thread.
class OfflineMixer final {
  public:
    /// `sampleRate` in Hz; `outputCount`: output channels of the device.
    OfflineMixer(const MixerSetup& setup, double sampleRate, std::size_t outputCount);

    /// Frames in every block.
    [[nodiscard]] std::size_t blockLength() const { return frames; }

    /// One cycle: each input channel's block is captured, each output channel's is filled.
    void cycle(std::span<const std::span<const float>> captured, std::span<const std::span<float>> played);

    /// What the automix made of the last block.
    [[nodiscard]] const dsp::AutomixProcessor& automix() const { return processor; }

    /// Smoothed share of a block's duration that its pass took, 0 to 1.
    [[nodiscard]] double load() const { return state.cpuLoad(); }

  private:
    std::size_t frames;
    dsp::AutomixProcessor processor;
    audio::MixerRealtimeState state;
};

} // namespace orvane::cli
