#pragma once

#include "audio/mixer_realtime_state.h"
#include "audio/render_pass.h"
#include "baseline/plain_mixer.h"
#include "dsp/automix_processor.h"

#include <cstddef>
#include <span>
#include <vector>

namespace orvane::bench {

/// The show used for all measurements: strips and the reference noise at 48 kHz, noise on every microphone,
/// every strip panned to a pair of as many outputs, the master bus on the first pair, trigger filters on half
/// of the strips. The fast mixer and the plain one have the same settings.
class ReferenceConditions final {
  public:
    static constexpr double sampleRate = 48000.0;

    /// What varies; by default 48 strips and the fastest kernels.
    struct Shape {
        std::size_t frames = 64;
        std::size_t strips = 48;
        const dsp::LaneKernels* kernels = &dsp::fastestLaneKernels();
    };

    explicit ReferenceConditions(const Shape& wanted);

    /// Runs one block through the fast mixer and plays its outputs.
    void runFast();

    /// Runs one block through the plain mixer and plays its outputs.
    void runPlain();

    /// Both run one block of double precision, through the fast and the plain automix alone.
    void processFast() { automix.process(blocks, {}); }
    void processPlain() { plain.automix.process(plainBlocks, allActive); }

    /// Copies the input and output samples of a block, and nothing else.
    void copyBlock();

    /// The duration of a block in seconds.
    [[nodiscard]] double blockSeconds() const { return static_cast<double>(shape.frames) / sampleRate; }

    /// Whether the last blocks of both mixers are equal in every bit.
    [[nodiscard]] bool playedTheSame() const { return fastPlayed == plainPlayed; }

    /// The parts of the fast mixer, for separate measurements.
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
