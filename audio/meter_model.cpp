#include "audio/meter_model.h"

#include <cmath>
#include <utility>

namespace orvane::audio {

namespace {

/// Weight of the newest reading of the reference noise; at 30 ticks per second a time constant of 0.26 s.
constexpr double noiseLevelSmoothing = 0.12;

} // namespace

MeterModel::MeterModel(std::size_t channelCount)
    : channelMeters(std::vector<double>(channelCount, 0.0)),
      channelGainReductionDB(std::vector<double>(channelCount, 0.0)) {}

void MeterModel::update(const MixerRealtimeState& state) {
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
}

} // namespace orvane::audio
