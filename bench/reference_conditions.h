#pragma once

#include "audio/mixer_realtime_state.h"
#include "audio/render_pass.h"
#include "baseline/plain_mixer.h"
#include "dsp/automix_processor.h"

#include <cstddef>
#include <span>
#include <vector>

namespace orvane::bench {

/// The show that everything is measured on: strips and the reference noise at 48 kHz, noise on every
/// microphone, every strip panned to a pair of as many outputs, the master bus on the first pair, trigger
/// filters on half the strips. The fast mixer and the plain one are set up alike.
class ReferenceConditions final {
  public:
    static constexpr double sampleRate = 48000.0;

    /// What varies: 48 strips and the fastest kernels unless said otherwise.
    struct Shape {
        std::size_t frames = 64;
        std::size_t strips = 48;
        const dsp::LaneKernels* kernels = &dsp::fastestLaneKernels();
    };

    explicit ReferenceConditions(const Shape& wanted);

    /// One block through the fast mixer, and its outputs played.
    void runFast();

    /// One block through the plain mixer, and its outputs played.
    void runPlain();

    /// One block of double precision through the fast and the plain automix alone.
    void processFast() { automix.process(blocks, {}); }
    void processPlain() { plain.automix.process(plainBlocks, allActive); }

    /// The samples that a block brings in and gives out, copied and nothing else.
    void copyBlock();

    /// The time that a block lasts, in seconds.
    [[nodiscard]] double blockSeconds() const { return static_cast<double>(shape.frames) / sampleRate; }

    /// Whether both mixers gave the same bits for the block that each ran last.
    [[nodiscard]] bool playedTheSame() const { return fastPlayed == plainPlayed; }

    /// The parts of the fast mixer, to be measured one by one.
    [[nodiscard]] dsp::AutomixProcessor& fastAutomix() { return automix; }
    [[nodiscard]] audio::MixerRealtimeState& fastState() { return state; }

  private:
    using FloatBlocks = std::vector<std::vector<float>>;

    static std::vector<std::span<float>> viewsOf(FloatBlocks& blocks);

    Shape shape;
    FloatBlocks captured;
    std::vector<std::span<const float>> capturedViews;
    FloatBlocks fastPlayed;
    FloatBlocks plainPlayed;
    std::vector<std::span<float>> fastViews;
    std::vector<std::span<float>> plainViews;
    dsp::ChannelBlocks<double> blocks;
    std::vector<std::vector<double>> plainBlocks;
    std::vector<bool> allActive;
    dsp::AutomixProcessor automix;
    audio::MixerRealtimeState state;
    baseline::PlainMixer plain;
};

} // namespace orvane::bench
