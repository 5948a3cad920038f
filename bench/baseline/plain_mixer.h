#pragma once

#include "baseline/plain_automix.h"
#include "dsp/pink_noise_generator.h"
#include "engine/session/master_output_routing.h"
#include "engine/session/output_routing.h"
#include "plugins/insert_render_context.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <vector>

namespace orvane::baseline {

/// A sample queue that advances its index sample by sample.
class PlainRing final {
  public:
    explicit PlainRing(std::size_t capacity);
    std::size_t write(std::span<const float> samples);
    std::size_t read(std::span<float> samples);

  private:
    std::unique_ptr<std::mutex> lock = std::make_unique<std::mutex>();
    std::vector<float> buffer;
    std::size_t writeIndex = 0;
    std::size_t readIndex = 0;
    std::size_t count = 0;
};

/// The render pass and the output pull as plain loops, written after their definition: the reference for
/// tests and benchmarks. Fields may be changed between blocks.
class PlainMixer final {
  public:
    struct Shape {
        std::size_t strips;
        double sampleRate;
        std::size_t bufferSize;
        std::size_t outputs;
        /// 0: the master bus plays on the main device.
        std::size_t masterOutputs;
    };

    PlainMixer(const Shape& shape, double masterTargetDB);

    void setRouting(
        std::vector<std::optional<std::int64_t>> inputs, std::vector<session::OutputRouting> outputs,
        session::MasterOutputRouting master
    );

    void process(std::span<const std::span<const float>> captured, std::size_t frameCount);
    static void pull(std::vector<PlainRing>& rings, std::span<const std::span<float>> outputs);

    PlainAutomix automix;
    double noiseGain = 0.0;
    std::vector<std::vector<plugins::InsertRenderContext*>> inserts;
    std::vector<std::vector<bool>> bypassed;
    std::vector<PlainRing> rings;
    std::vector<PlainRing> masterRings;
    std::vector<double> gainReduction;

  private:
    using Block = std::vector<double>;

    void resize(std::size_t frameCount);
    void routeStrips();
    void routeMaster();
    void deliver(
        const std::vector<Block>& sums, const std::vector<bool>& active, std::vector<PlainRing>& destination
    );

    std::size_t strips;
    dsp::PinkNoiseGenerator pinkNoise;
    std::vector<std::optional<std::int64_t>> inputChannels;
    std::vector<session::OutputRouting> outputRoutings;
    session::MasterOutputRouting masterRouting;
    std::vector<double> leftGain;
    std::vector<double> rightGain;
    std::vector<bool> active;
    std::vector<bool> masterActive;
    std::vector<Block> blocks;
    std::vector<bool> mask;
    std::vector<Block> sums;
    std::vector<Block> masterSums;
    std::vector<float> floats;
};

} // namespace orvane::baseline
