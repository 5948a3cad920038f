#include "dsp/automix_processor.h"

#include "dsp/decibels.h"
#include "dsp/level_detector.h"
#include "dsp/sound_bounds.h"

#include <algorithm>
#include <cassert>

namespace orvane::dsp {

namespace {

constexpr double maleCutoffHz = 180.0;
constexpr double femaleCutoffHz = 3500.0;
constexpr double shelfDB = -16.0;

constexpr double gainAttackMs = 15.0;
constexpr double initialReleaseMs = 400.0;
constexpr double noiseFloor = 1e-6;
constexpr double gainFloorDB = -26.0;

constexpr double levelerAttackMs = 30.0;
constexpr double levelerReleaseMs = 500.0;
constexpr double levelerMaxGainDB = 20.0;
constexpr double levelerMinGainDB = -24.0;

bool isActive(std::span<const bool> mask, std::size_t channel) noexcept {
    return mask.empty() || mask[channel];
}

/// Muted and bypassed channels take no part in the decision.
bool competes(const ChannelAutomixSettings& settings) noexcept {
    return !settings.muted && !settings.bypassed;
}

} // namespace

AutomixProcessor::Lanes::Lanes(std::size_t most)
    : channels(most), inputs(most), outputs(most), values(most), steps(most), sums(most) {}

AutomixProcessor::AutomixProcessor(
    std::size_t channelCount, double sampleRate, double controlRate, double masterTargetDB,
    const LaneKernels& loops
)
    : kernels(loops),
      triggerFilters(
          channelCount,
          GenderTriggerFilter(GenderTriggerMode::neutral, maleCutoffHz, femaleCutoffHz, shelfDB, sampleRate)
      ),
      gainSharing(channelCount, controlRate, gainAttackMs, initialReleaseMs, noiseFloor, gainFloorDB),
      masterLeveler(
          masterTargetDB, controlRate, levelerAttackMs, levelerReleaseMs, levelerMaxGainDB, levelerMinGainDB
      ),
      edited{
          .settings = std::vector<ChannelAutomixSettings>(channelCount),
          .masterTargetRMS = masterLeveler.targetRMS,
          .releaseMs = initialReleaseMs},
      handover(edited),
      arrangement{.isActive = std::vector<char>(channelCount)},
      levelsScratch(channelCount, 0.0),
      detected{Lanes(channelCount), Lanes(channelCount), Lanes(channelCount)},
      lanesOnBus(channelCount),
      lanesOffBus(channelCount),
      lastGains(channelCount, 0.0),
      outputLevels(channelCount, 0.0) {
    assert(channelCount >= 1);
}

void AutomixProcessor::setSettings(std::size_t channel, const ChannelAutomixSettings& settings) {
    edited.settings[channel] = settings;
    publish();
}

void AutomixProcessor::setSettings(std::span<const ChannelAutomixSettings> settings) {
    assert(settings.size() == edited.settings.size());
    std::ranges::copy(settings, edited.settings.begin());
    publish();
}

void AutomixProcessor::setLeadGroupGainDB(double gainDB) {
    edited.leadGroupGainDB = gainDB;
    edited.leadGain = dbToLinear(gainDB);
    publish();
}

void AutomixProcessor::setBackingGroupGainDB(double gainDB) {
    edited.backingGroupGainDB = gainDB;
    edited.backingGain = dbToLinear(gainDB);
    publish();
}

double AutomixProcessor::masterTargetDB() const noexcept {
    return linearToDB(edited.masterTargetRMS);
}

void AutomixProcessor::setMasterTargetDB(double targetDB) {
    edited.masterTargetRMS = dbToLinear(targetDB);
    publish();
}

void AutomixProcessor::setReleaseMs(double releaseMs) {
    edited.releaseMs = releaseMs;
    publish();
}

void AutomixProcessor::setOutputOptions(const OutputOptions& options) {
    edited.options = options;
    publish();
}

void AutomixProcessor::ensureScratch(std::size_t frameCount) {
    if (perChannelScratch.channelCount() == channelCount() && perChannelScratch.frameCount() == frameCount)
        return;
    perChannelScratch.reshape(channelCount(), frameCount);
    arrangement.controls = nullptr;
    summedScratch.assign(frameCount, 0.0);
}

AutomixProcessor::Output
AutomixProcessor::process(const ChannelBlocks<double>& blocks, std::span<const bool> activeMask) noexcept {
    assert(blocks.channelCount() == channelCount());
    assert(activeMask.empty() || activeMask.size() == channelCount());
    ensureScratch(blocks.frameCount());
    const Controls& controls = handover.latest();
    applyMaster(controls);
    if (!isArranged(controls, blocks, activeMask)) arrange(controls, blocks, activeMask);
    detect(controls, blocks.frameCount());
    gainSharing.process(levelsScratch);
    mix(controls, blocks.frameCount());
    level();
    return {perChannelScratch, summedScratch};
}

void AutomixProcessor::applyMaster(const Controls& controls) noexcept {
    gainSharing.setReleaseMs(controls.releaseMs);
    gainSharing.setFastOnset(controls.options.fastOnset);
    // The reference noise is never summed, so it is no open microphone.
    gainSharing.setOpenMicrophoneLimit(controls.options.openMicrophoneLimit ? channelCount() - 1 : 0);
    masterLeveler.targetRMS = controls.masterTargetRMS;
    masterLeveler.setMode(controls.options.leveler);
    ramps = controls.options.gainRamps;
}

bool AutomixProcessor::isArranged(
    const Controls& controls, const ChannelBlocks<double>& blocks, std::span<const bool> mask
) const noexcept {
    if (arrangement.controls != &controls || arrangement.firstInput != blocks[0].data()
        || arrangement.frameCount != blocks.frameCount())
        return false;
    for (std::size_t i = 0; i < channelCount(); ++i)
        if (isActive(mask, i) != (arrangement.isActive[i] != 0)) return false;
    return true;
}

void AutomixProcessor::arrange(
    const Controls& controls, const ChannelBlocks<double>& blocks, std::span<const bool> mask
) noexcept {
    arrangement.controls = &controls;
    arrangement.firstInput = blocks[0].data();
    arrangement.frameCount = blocks.frameCount();
    for (Lanes& lanes : detected)
        lanes.clear();
    lanesOnBus.clear();
    lanesOffBus.clear();
    for (std::size_t i = 0; i < channelCount(); ++i) {
        const ChannelAutomixSettings& settings = controls.settings[i];
        triggerFilters[i].mode = settings.genderMode;
        levelsScratch[i] = 0.0;
        arrangement.isActive[i] = isActive(mask, i) ? 1 : 0;
        if (arrangement.isActive[i] == 0) {
            std::ranges::fill(perChannelScratch[i], 0.0);
            outputLevels[i] = 0.0;
            lastGains[i] = 0.0;
            continue;
        }
        // A shelf filter's state advances even if its level is not needed.
        if (settings.genderMode != GenderTriggerMode::neutral || competes(settings))
            detected[static_cast<std::size_t>(settings.genderMode)].add(i, blocks[i].data());
        Lanes& group = settings.excludedFromMasterBus ? lanesOffBus : lanesOnBus;
        group.outputs[group.add(i, blocks[i].data())] = perChannelScratch[i].data();
    }
}

void AutomixProcessor::detect(const Controls& controls, std::size_t frameCount) noexcept {
    for (const GenderTriggerMode mode : allGenderTriggerModes) {
        Lanes& lanes = detected[static_cast<std::size_t>(mode)];
        if (lanes.count == 0) continue;
        sumSquares(mode, frameCount);
        kernels.rootMeans(lanes.sums.data(), lanes.count, frameCount);
        for (std::size_t lane = 0; lane < lanes.count; ++lane) {
            const std::size_t channel = lanes.channels[lane];
            if (competes(controls.settings[channel])) levelsScratch[channel] = lanes.sums[lane];
        }
    }
}

void AutomixProcessor::sumSquares(GenderTriggerMode mode, std::size_t frameCount) noexcept {
    Lanes& lanes = detected[static_cast<std::size_t>(mode)];
    const double* const* inputs = lanes.inputs.data();
    if (mode == GenderTriggerMode::neutral) {
        kernels.sumOfSquares(inputs, lanes.count, frameCount, lanes.sums.data());
        return;
    }
    const bool isMale = mode == GenderTriggerMode::male;
    const auto lowpass = isMale ? &GenderTriggerFilter::lowpassMale : &GenderTriggerFilter::lowpassFemale;
    for (std::size_t lane = 0; lane < lanes.count; ++lane)
        lanes.values[lane] = (triggerFilters[lanes.channels[lane]].*lowpass).y;

    const auto kernel = isMale ? kernels.lowShelfSumOfSquares : kernels.highShelfSumOfSquares;
    const GenderTriggerFilter& any = triggerFilters.front();
    kernel(
        inputs, lanes.count, frameCount, (any.*lowpass).a, any.shelfGain, lanes.values.data(),
        lanes.sums.data()
    );
    for (std::size_t lane = 0; lane < lanes.count; ++lane)
        (triggerFilters[lanes.channels[lane]].*lowpass).y = lanes.values[lane];
}

void AutomixProcessor::mix(const Controls& controls, std::size_t frameCount) noexcept {
    std::ranges::fill(summedScratch, 0.0);
    mixGroup(controls, lanesOnBus, frameCount, summedScratch.data());
    mixGroup(controls, lanesOffBus, frameCount, nullptr);
}

double AutomixProcessor::mixGain(const Controls& controls, std::size_t channel) const noexcept {
    const ChannelAutomixSettings& settings = controls.settings[channel];
    const double role = settings.vocalRole == VocalRole::lead      ? controls.leadGain
                        : settings.vocalRole == VocalRole::backing ? controls.backingGain
                                                                   : 1.0;
    const double gain = settings.muted      ? 0.0
                        : settings.bypassed ? role * settings.trim
                                            : role * (gainSharing.smoothedGain()[channel] * settings.trim);
    return orSilence(gain, largestGain);
}

void AutomixProcessor::mixGroup(
    const Controls& controls, Lanes& group, std::size_t frameCount, double* bus
) noexcept {
    const double frames = static_cast<double>(std::max<std::size_t>(frameCount, 1));
    for (std::size_t lane = 0; lane < group.count; ++lane) {
        double& last = lastGains[group.channels[lane]];
        const double gain = mixGain(controls, group.channels[lane]);
        group.values[lane] = ramps ? last : gain;
        if (ramps) group.steps[lane] = (gain - last) / frames;
        last = gain;
    }
    if (ramps)
        kernels.mixRamped(
            group.inputs.data(), group.values.data(), group.steps.data(), group.outputs.data(), group.count,
            frameCount, bus, group.sums.data()
        );
    else
        kernels.mix(
            group.inputs.data(), group.values.data(), group.outputs.data(), group.count, frameCount, bus,
            group.sums.data()
        );
    kernels.rootMeans(group.sums.data(), group.count, frameCount);
    for (std::size_t lane = 0; lane < group.count; ++lane)
        outputLevels[group.channels[lane]] = group.sums[lane];
}

void AutomixProcessor::level() noexcept {
    const double gain = masterLeveler.process(LevelDetector::rms(std::span<const double>(summedScratch)));
    const std::size_t frames = summedScratch.size();
    if (ramps && frames > 0)
        kernels.scaleRamped(
            summedScratch.data(), lastMasterGain, (gain - lastMasterGain) / static_cast<double>(frames),
            frames
        );
    else
        kernels.scale(summedScratch.data(), gain, frames);
    lastMasterGain = gain;
    masterLevel = LevelDetector::rms(std::span<const double>(summedScratch));
}

} // namespace orvane::dsp
