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

/// Watches a stepped stage for what must hold of every block whatever is done: of the automix gains, the
/// leveler's gain, what each output plays, and of the meters. Main thread, on which the stage is stepped too.
class BlockInvariants final {
  public:
    /// `fullCheckInterval`: every that many blocks each sample of each channel is compared with what it is
    /// made of, which takes about as long as the block. What it is given outlives it.
    BlockInvariants(Stage& watched, Fault& found, std::size_t fullCheckInterval);
    ~BlockInvariants();
    BlockInvariants(const BlockInvariants&) = delete;
    BlockInvariants& operator=(const BlockInvariants&) = delete;

    /// To be called after a tick of the meters that no block has followed.
    void checkMeters();

    /// How many blocks of main devices were seen.
    [[nodiscard]] std::uint64_t blocks() const { return blockCount; }

  private:
    using Outputs = std::span<const std::span<const float>>;

    /// What a run was started with.
    struct Run {
        audio::AudioDeviceInfo device;
        bool hasMasterDevice = false;
        std::size_t bufferSize = 0;
        /// The lowest that a gain can be by now: gains start below the floor and rise to it.
        double lowestGain = 0.0;
        /// One step of a rising gain.
        double attackCoef = 0.0;
        std::uint64_t blocks = 0;
    };

    void beginRun();
    void heard(const StageDevice& device, Outputs outputs);
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
    audio::Subscription toRunning;
};

} // namespace orvane::soak
