#pragma once

#include "dsp/channel_automix_settings.h"
#include "dsp/channel_blocks.h"
#include "dsp/gain_sharing_mixer.h"
#include "dsp/gender_trigger_filter.h"
#include "dsp/handover.h"
#include "dsp/kernels/lane_kernels.h"
#include "dsp/master_bus_leveler.h"
#include "dsp/output_options.h"
#include "dsp/realtime.h"

#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace orvane::dsp {

/// The automix. Measures the activity of K channels once per block, decides their gains, applies gain, trim,
/// mute, bypass and group gain to each channel, sums the master bus and levels it. With N strips, K is N + 1:
/// the last channel is the reference noise, which competes for gain but is never summed.
///
/// The control thread may set settings, group gains, target and release at any time. They take effect at the
/// start of the next block. All that one call sets takes effect together, but a block may begin between two
/// calls. All other state belongs to the render thread.
class AutomixProcessor final {
  public:
    /// `channelCount` is K, at least 1; `sampleRate` in Hz; `controlRate` in blocks per second.
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

    /// Target of the master leveler in dB full scale.
    [[nodiscard]] double masterTargetDB() const noexcept;
    void setMasterTargetDB(double targetDB);

    /// Release time of the gain sharing in ms; 400 at creation.
    [[nodiscard]] double releaseMs() const noexcept { return edited.releaseMs; }
    void setReleaseMs(double releaseMs);

    /// All but the limiter, which belongs to the outputs. Defaults at creation.
    [[nodiscard]] const OutputOptions& outputOptions() const noexcept { return edited.options; }
    void setOutputOptions(const OutputOptions& options);

    // Render thread, or any thread while no block is processed.

    [[nodiscard]] std::size_t channelCount() const noexcept { return triggerFilters.size(); }

    /// The kernels that this processor runs on.
    [[nodiscard]] const LaneKernels& laneKernels() const noexcept { return kernels; }

    /// Whether gains run in a line over the block that was processed last.
    [[nodiscard]] bool rampsGains() const noexcept { return ramps; }

    /// Sizes the working memory for blocks of `frameCount` frames. Allocates only if they outgrow all earlier
    /// ones. `process` calls it; call it before the first block to keep that block free of allocation.
    void ensureScratch(std::size_t frameCount);

    /// The result of a block. Refers to the processor's own buffers, valid until the next block.
    struct Output {
        const ChannelBlocks<double>& channelOutputs;
        std::span<const double> masterBus;
    };

    /// Processes one block of K x frameCount samples. `activeMask` has K entries, true for channels that hold
    /// audio; if it is empty, all channels do. Real-time safe while the block length stays the same.
    ORVANE_REALTIME Output
    process(const ChannelBlocks<double>& blocks, std::span<const bool> activeMask) noexcept;

    /// Results of the last block. Gains are linear; levels are linear RMS after all gains.
    [[nodiscard]] std::span<const double> currentGains() const noexcept { return gainSharing.smoothedGain(); }
    [[nodiscard]] double currentMasterGain() const noexcept { return masterLeveler.smoothedGain(); }
    [[nodiscard]] std::span<const double> currentOutputLevels() const noexcept { return outputLevels; }
    [[nodiscard]] double currentMasterLevel() const noexcept { return masterLevel; }
    [[nodiscard]] const ChannelBlocks<double>& channelOutputs() const noexcept { return perChannelScratch; }

  private:
    /// The values that the control thread sets; handed over as a whole.
    struct Controls {
        std::vector<ChannelAutomixSettings> settings;
        double leadGroupGainDB = 0.0;
        double backingGroupGainDB = 0.0;
        double leadGain = 1.0;
        double backingGain = 1.0;
        double masterTargetRMS;
        double releaseMs;
        OutputOptions options = {};
    };

    /// The channels of one kernel call, with the call's arguments and results for each.
    struct Lanes {
        explicit Lanes(std::size_t most);
        void clear() noexcept { count = 0; }
        /// Adds a lane and returns its index.
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
        std::vector<double> steps;
        std::vector<double> sums;
    };

    void publish() { handover.publish(edited); }
    void applyMaster(const Controls& controls) noexcept;
    /// Sorts the channels into lanes. Needed if the controls, the mask or the addresses of the blocks have
    /// changed.
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
    [[nodiscard]] double mixGain(const Controls& controls, std::size_t channel) const noexcept;
    void level() noexcept;

    const LaneKernels& kernels;
    std::vector<GenderTriggerFilter> triggerFilters;
    GainSharingMixer gainSharing;
    MasterBusLeveler masterLeveler;
    Controls edited;
    Handover<Controls> handover;

    /// The arguments that the lanes were last arranged for.
    struct Arrangement {
        const Controls* controls = nullptr;
        const double* firstInput = nullptr;
        std::size_t frameCount = 0;
        /// Nonzero for every channel that holds audio.
        std::vector<char> isActive = {};
    };
    Arrangement arrangement;

    std::vector<double> levelsScratch;
    ChannelBlocks<double> perChannelScratch;
    std::vector<double> summedScratch;
    /// One for each trigger mode.
    std::array<Lanes, allGenderTriggerModes.size()> detected;
    Lanes lanesOnBus;
    Lanes lanesOffBus;
    /// The gains at the end of the last block, from which ramps start; 0 of channels without audio.
    std::vector<double> lastGains;
    bool ramps = false;
    double lastMasterGain = 1.0;
    std::vector<double> outputLevels;
    double masterLevel = 0.0;
};

} // namespace orvane::dsp
