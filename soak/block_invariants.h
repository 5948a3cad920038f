#pragma once

#include "audio/meter_model.h"
#include "dsp/automix_processor.h"
#include "soak/fault.h"
#include "soak/stage.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace orvane::soak {

/// Checks the invariants of every block of a stepped stage: the automix gains, the leveler's gain, each
/// output's signal and the meters. Main thread, which also steps the stage.
class BlockInvariants final {
  public:
    /// Every `fullCheckInterval` blocks, each sample of each channel is recomputed, which takes about as long
    /// as rendering the block. The arguments must outlive this object.
    BlockInvariants(Stage& watched, Fault& found, std::size_t fullCheckInterval);
    ~BlockInvariants();
    BlockInvariants(const BlockInvariants&) = delete;
    BlockInvariants& operator=(const BlockInvariants&) = delete;

    /// Must be called after a tick of the meters with no block after it.
    void checkMeters();

    /// The number of main device blocks seen.
    [[nodiscard]] std::uint64_t blocks() const { return blockCount; }

  private:
    using Outputs = std::span<const std::span<const float>>;

    /// The settings at the start of a run.
    struct Run {
        audio::AudioDeviceInfo device;
        bool hasMasterDevice = false;
        std::size_t bufferSize = 0;
        /// The lowest possible gain at this time: gains start below the floor and rise to it.
        double lowestGain = 0.0;
        /// The coefficient of a rising gain.
        double attackCoef = 0.0;
        std::uint64_t blocks = 0;
    };

    void beginRun();
    void checkBlock(const StageDevice& device, Outputs outputs);
    void checkFinite(const StageDevice& device, Outputs outputs);
    void checkGains(const dsp::AutomixProcessor& automix);
    void checkChannels(const dsp::AutomixProcessor& automix, const Voices* voices);
    void checkSums(const dsp::AutomixProcessor& automix, Outputs outputs);
    [[nodiscard]] bool isSane() const;
    [[nodiscard]] bool hasLivePlugin(const session::ChannelStrip& strip) const;

    Stage& stage;
    Fault& fault;
    std::size_t interval;
    std::optional<Run> run;
    std::uint64_t blockCount = 0;
    std::vector<double> bus;
    std::vector<std::vector<double>> sums;
    std::vector<double> weights;
    platform::Subscription toRunning;
};

} // namespace orvane::soak
