#include "audio/meter_model.h"

#include <cmath>
#include <utility>

namespace orvane::audio {

namespace {

/// Weight of the newest reading of the reference noise; at 30 ticks per second a time constant of 0.26 s.
constexpr double noiseLevelSmoothing = 0.12;
/// How long a peak is held: 2 s.
constexpr int ticksHeld = 60;

} // namespace

MeterModel::MeterModel(std::size_t channelCount)
    : channelMeters(std::vector<double>(channelCount, 0.0)),
      channelGainReductionDB(std::vector<double>(channelCount, 0.0)) {}

void MeterModel::update(MixerRealtimeState& state) {
    MeterReading reading = state.readMeters();
    channelMeters.set(std::move(reading.channelLevels));
    masterMeter.set(reading.masterLevel);
    masterGain.set(reading.masterGain);
    channelGainReductionDB.set(std::move(reading.gainReductionDB));
    // An infinity or NaN would stay in the smoothed level for good.
    const double shown = pinkNoiseLevel.get();
    const double level = std::isfinite(reading.referenceNoiseLevel) ? reading.referenceNoiseLevel : shown;
    pinkNoiseLevel.set(shown + (level - shown) * noiseLevelSmoothing);
    cpuLoad.set(state.cpuLoad());
    inputPeaks.set(heldInputs.update(state.inputPeaks));
    outputPeaks.set(heldOutputs.update(state.outputPeaks));
    masterOutputPeaks.set(heldMasterOutputs.update(state.masterOutputPeaks));
    masterPeak.set(heldMaster.update(state.masterPeak).front());
    limiterReductionDB.set(state.takeLimiterReductionDB());
}

void MeterModel::resetOvers() {
    inputPeaks.set(heldInputs.withoutOvers());
    outputPeaks.set(heldOutputs.withoutOvers());
    masterOutputPeaks.set(heldMasterOutputs.withoutOvers());
    const std::vector<SignalPeak>& master = heldMaster.withoutOvers();
    masterPeak.set(master.empty() ? SignalPeak{} : master.front());
}

const std::vector<SignalPeak>& MeterModel::HeldPeaks::update(SignalPeaks& peaks) {
    const std::vector<SignalPeak> taken = peaks.take();
    // Another run may have another number of outputs.
    shown.resize(taken.size());
    holds.resize(taken.size());
    for (std::size_t i = 0; i < taken.size(); ++i) {
        Hold& hold = holds[i];
        shown[i].overs += taken[i].overs;
        if (taken[i].isUsed && (hold.isReleased || taken[i].peak > shown[i].peak)) {
            shown[i] = {true, taken[i].peak, shown[i].overs};
            hold = {ticksHeld, false};
        } else if (--hold.ticksLeft <= 0) {
            if (hold.isReleased) shown[i] = {false, 0.0, shown[i].overs};
            peaks.release(i);
            hold = {ticksHeld, true};
        }
    }
    return shown;
}

const std::vector<SignalPeak>& MeterModel::HeldPeaks::withoutOvers() {
    for (SignalPeak& signal : shown)
        signal.overs = 0;
    return shown;
}

} // namespace orvane::audio
