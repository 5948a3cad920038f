#pragma once

#include "dsp/channel_automix_settings.h"
#include "dsp/channel_blocks.h"
#include "dsp/gain_sharing_mixer.h"
#include "dsp/gender_trigger_filter.h"
#include "dsp/handover.h"
#include "dsp/kernels/lane_kernels.h"
#include "dsp/master_bus_leveler.h"
#include "dsp/realtime.h"

#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace orvane::dsp {

/// The automix: weighs the activity of K channels once per block, decides their gains, applies gain, trim,
/// mute, bypass and group gain to each, sums the master bus and levels it. With N strips K is N + 1: the last
/// channel is the reference noise, which competes but is never summed.
///
/// Settings, group gains, target and release are written by the control thread at any time and taken over at
/// the start of the next block, all that one call sets or nothing of it; a block may begin between two calls.
/// Everything else is the render thread's.
class AutomixProcessor final {
  public:
    /// `channelCount` K at least 1; `sampleRate` in Hz; `controlRate`: blocks per second.
    AutomixProcessor(
        std::size_t channelCount, double sampleRate, double controlRate, double masterTargetDB,
        const LaneKernels& loops = fastestLaneKernels()
    );

    // Control thread.

    [[nodiscard]] std::span<const ChannelAutomixSettings> settings() const noexcept {
        return edited.settings;
    }
    void setSettings(std::size_t channel, const ChannelAutomixSettings& settings);
    /// One record per channel.
    void setSettings(std::span<const ChannelAutomixSettings> settings);

    /// Gains of the channels with role `lead` or `backing`, in dB; 0 at creation.
    [[nodiscard]] double leadGroupGainDB() const noexcept { return edited.leadGroupGainDB; }
    void setLeadGroupGainDB(double gainDB);
    [[nodiscard]] double backingGroupGainDB() const noexcept { return edited.backingGroupGainDB; }
    void setBackingGroupGainDB(double gainDB);

    /// Target of the master leveler in dB re full scale.
    [[nodiscard]] double masterTargetDB() const noexcept;
    void setMasterTargetDB(double targetDB);

    /// Release time of the gain sharing in ms; 400 at creation.
    [[nodiscard]] double releaseMs() const noexcept { return edited.releaseMs; }
    void setReleaseMs(double releaseMs);

    // Render thread; or any thread while no block is processed.

    [[nodiscard]] std::size_t channelCount() const noexcept { return triggerFilters.size(); }

    /// The loops that this processor runs on.
    [[nodiscard]] const LaneKernels& laneKernels() const noexcept { return kernels; }

    /// Sizes the working memory for blocks of `frameCount` frames. Allocates only when they outgrow all
    /// earlier ones; `process` calls it, so call it before the first block to keep that block free of
    /// allocation.
    void ensureScratch(std::size_t frameCount);

    /// What a block becomes; the processor's own buffers, valid until the next block.
    struct Output {
        const ChannelBlocks<double>& channelOutputs;
        std::span<const double> masterBus;
    };

    /// Processes one block: `blocks` is K x frameCount. `activeMask`: true where a channel holds audio, K
    /// entries; empty if all do. Real-time safe while the block length stays.
    ORVANE_REALTIME Output
    process(const ChannelBlocks<double>& blocks, std::span<const bool> activeMask) noexcept;

    /// Results of the last block. Gains are linear, levels linear RMS after all gains.
    [[nodiscard]] std::span<const double> currentGains() const noexcept { return gainSharing.smoothedGain(); }
    [[nodiscard]] double currentMasterGain() const noexcept { return masterLeveler.smoothedGain(); }
    [[nodiscard]] std::span<const double> currentOutputLevels() const noexcept { return outputLevels; }
    [[nodiscard]] double currentMasterLevel() const noexcept { return masterLevel; }
    [[nodiscard]] const ChannelBlocks<double>& channelOutputs() const noexcept { return perChannelScratch; }

  private:
    /// What the control thread decides; handed over whole.
    struct Controls {
        std::vector<ChannelAutomixSettings> settings;
        double leadGroupGainDB = 0.0;
        double backingGroupGainDB = 0.0;
        double leadGain = 1.0;
        double backingGain = 1.0;
        double masterTargetRMS;
        double releaseMs;
    };

    /// Channels that one kernel call works on, and what it is given and gives for each.
    struct Lanes {
        explicit Lanes(std::size_t most);
        void clear() noexcept { count = 0; }
        /// The next lane.
        std::size_t add(std::size_t channel, const double* input) noexcept {
            channels[count] = channel;
            inputs[count] = input;
            return count++;
        }

        std::size_t count = 0;
        std::vector<std::size_t> channels;
        std::vector<const double*> inputs;
        std::vector<double*> outputs;
        std::vector<double> values;
        std::vector<double> sums;
    };

    void publish() { handover.publish(edited); }
    /// Sorts the channels into lanes, where the controls, the mask or the place of the blocks have changed.
    void arrange(
        const Controls& controls, const ChannelBlocks<double>& blocks, std::span<const bool> mask
    ) noexcept;
    [[nodiscard]] bool isArranged(
        const Controls& controls, const ChannelBlocks<double>& blocks, std::span<const bool> mask
    ) const noexcept;
    void detect(const Controls& controls, std::size_t frameCount) noexcept;
    void sumSquares(GenderTriggerMode mode, std::size_t frameCount) noexcept;
    void mix(const Controls& controls, std::size_t frameCount) noexcept;
    void mixGroup(const Controls& controls, Lanes& group, std::size_t frameCount, double* bus) noexcept;
    void level() noexcept;

    const LaneKernels& kernels;
    std::vector<GenderTriggerFilter> triggerFilters;
    GainSharingMixer gainSharing;
    MasterBusLeveler masterLeveler;
    Controls edited;
    Handover<Controls> handover;

    /// What the lanes were arranged for.
    struct Arrangement {
        const Controls* controls = nullptr;
        const double* firstInput = nullptr;
        std::size_t frameCount = 0;
        /// Not 0 for every channel that holds audio.
        std::vector<char> isActive = {};
    };
    Arrangement arrangement;

    std::vector<double> levelsScratch;
    ChannelBlocks<double> perChannelScratch;
    std::vector<double> summedScratch;
    /// One for every trigger mode.
    std::array<Lanes, allGenderTriggerModes.size()> detected;
    Lanes lanesOnBus;
    Lanes lanesOffBus;
    std::vector<double> outputLevels;
    double masterLevel = 0.0;
};

} // namespace orvane::dsp
