#include "audio/mixer_realtime_state.h"

#include "dsp/decibels.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace orvane::audio {

namespace {

/// Weight of the newest block in the running load.
constexpr double loadSmoothing = 0.2;
constexpr double nanosecondsPerSecond = 1e9;

} // namespace

MixerRealtimeState::MixerRealtimeState(std::size_t channelCount, platform::HostClock hostClock)
    : clock(hostClock),
      inputPeaks(channelCount),
      scratch(channelCount),
      strips(channelCount),
      meterSnapshot(channelCount, 0.0),
      gainReductionSnapshot(channelCount, 0.0) {
    // The first block publishes one level more than there are strips, and must not allocate for it.
    meterSnapshot.reserve(channelCount + 1);
}

void MixerRealtimeState::updateRouting(
    std::span<const std::optional<std::int64_t>> inputs, std::span<const session::OutputRouting> outputs,
    const session::MasterOutputRouting& master
) {
    routing.replace(std::make_unique<const RoutingTable>(inputs, outputs, master));
}

void MixerRealtimeState::updatePlugins(InsertTable table) {
    inserts.replace(std::make_unique<const InsertTable>(std::move(table)));
}

bool MixerRealtimeState::freeRetired() {
    const bool noRouting = routing.freeRetired();
    const bool noInserts = inserts.freeRetired();
    return noRouting && noInserts;
}

void MixerRealtimeState::setNoiseGain(double linearGain) noexcept {
    const std::scoped_lock guard(noiseLock);
    noiseGainLinear = linearGain;
}

MeterReading MixerRealtimeState::readMeters() const {
    MeterReading reading;
    reading.channelLevels.reserve(strips + 1);
    reading.gainReductionDB.reserve(strips);
    {
        const std::scoped_lock guard(meterLock);
        reading.channelLevels = meterSnapshot;
        reading.masterLevel = masterMeterSnapshot;
        reading.masterGain = masterGainSnapshot;
        reading.gainReductionDB = gainReductionSnapshot;
    }
    if (reading.channelLevels.size() > strips) reading.referenceNoiseLevel = reading.channelLevels[strips];
    return reading;
}

PeakReading MixerRealtimeState::takePeaks() {
    return {inputPeaks.take(), outputPeaks.take(), masterOutputPeaks.take(), masterPeak.take().front()};
}

double MixerRealtimeState::takeLimiterReductionDB() noexcept {
    // A subtraction, because the negation of 0 dB has a sign.
    return 0.0 - dsp::linearToDB(lowestLimiterGain.exchange(1.0, std::memory_order_relaxed));
}

double MixerRealtimeState::cpuLoad() const noexcept {
    const std::scoped_lock guard(cpuLock);
    return cpuLoadSnapshot;
}

std::optional<MixerRealtimeState::RunningInsert> MixerRealtimeState::runningInsert() const {
    std::optional<RunningInsert> running;
    inserts.visit([&running](const InsertTable& table) {
        for (std::size_t strip = 0; strip < table.pluginContexts.size(); ++strip)
            for (const auto& context : table.pluginContexts[strip])
                if (!running && context && context->isRendering()) running = {strip, context->name()};
    });
    return running;
}

void MixerRealtimeState::abandonInserts() {
    inserts.visit([](const InsertTable& table) {
        for (const auto& slots : table.pluginContexts)
            for (const auto& context : slots)
                if (context) context->abandon();
    });
}

void MixerRealtimeState::ensureScratch(std::size_t frameCount) {
    scratch.ensure(frameCount, outputRingBuffers.size(), masterOutputRingBuffers.size());
    if (limiter) limiter->ensureScratch(frameCount);
    if (outputPeaks.signalCount() != outputRingBuffers.size())
        outputPeaks = SignalPeaks(outputRingBuffers.size());
    if (masterOutputPeaks.signalCount() != masterOutputRingBuffers.size())
        masterOutputPeaks = SignalPeaks(masterOutputRingBuffers.size());
}

double MixerRealtimeState::noiseGain() const noexcept {
    const std::scoped_lock guard(noiseLock);
    return noiseGainLinear;
}

void MixerRealtimeState::publishMeters(const dsp::AutomixProcessor& automix) noexcept {
    const std::span<const double> levels = automix.currentOutputLevels();
    const std::scoped_lock guard(meterLock);
    meterSnapshot.assign(levels.begin(), levels.end());
    masterMeterSnapshot = automix.currentMasterLevel();
    masterGainSnapshot = automix.currentMasterGain();
    std::ranges::copy(scratch.gainReductionScratch, gainReductionSnapshot.begin());
}

void MixerRealtimeState::publishLoad(std::uint64_t startTicks, std::size_t frameCount) noexcept {
    if (!(sampleRate > 0.0) || frameCount == 0) return;
    const platform::TimebaseInfo& timebase = clock.timebaseInfo;
    const double ticks = static_cast<double>(clock.absoluteTime() - startTicks);
    const double elapsed =
        timebase.denom == 0 ? 0.0 : ticks * timebase.numer / timebase.denom / nanosecondsPerSecond;
    const double load = std::clamp(elapsed / (static_cast<double>(frameCount) / sampleRate), 0.0, 1.0);
    const std::scoped_lock guard(cpuLock);
    cpuLoadSnapshot += (load - cpuLoadSnapshot) * loadSmoothing;
}

} // namespace orvane::audio
