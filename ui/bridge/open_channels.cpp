#include "ui/bridge/open_channels.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace orvane::ui {

namespace {

/// Linear RMS of -40 dB.
constexpr double smallestSignal = 0.01;
/// Half a second at 30 ticks per second.
constexpr int holdTicks = 15;
constexpr double openWithinDB = 6.0;

double valueAt(const std::vector<double>& values, std::size_t channel) {
    return channel < values.size() ? values[channel] : 0.0;
}

} // namespace

OpenChannels::OpenChannels(const engine::EngineState& state, const audio::MeterModel& model)
    : engineState(state),
      meters(model),
      signalTicks(state.channelStrips.get().size(), 0),
      open(std::vector<bool>(signalTicks.size(), false)) {
    // The model publishes the reductions after the levels.
    subscriptions.push_back(model.channelGainReductionDB.subscribe([this](const auto&) {
        listen();
        decide();
    }));
    subscriptions.push_back(state.channelStrips.subscribe([this](const auto&) { decide(); }));
    subscriptions.push_back(state.isRunning.subscribe([this](bool) {
        std::ranges::fill(signalTicks, 0);
        decide();
    }));
}

void OpenChannels::listen() {
    const std::vector<double>& levels = meters.channelMeters.get();
    for (std::size_t channel = 0; channel < signalTicks.size(); ++channel)
        signalTicks[channel] =
            valueAt(levels, channel) >= smallestSignal ? holdTicks : std::max(signalTicks[channel] - 1, 0);
}

void OpenChannels::decide() {
    double least = std::numeric_limits<double>::max();
    for (std::size_t channel = 0; channel < signalTicks.size(); ++channel)
        if (sounds(channel)) least = std::min(least, reductionOf(channel).value_or(least));
    std::vector<bool> now(signalTicks.size());
    for (std::size_t channel = 0; channel < now.size(); ++channel)
        now[channel] = sounds(channel) && reductionOf(channel).value_or(least) <= least + openWithinDB;
    if (now != open.get()) open.set(std::move(now));
}

bool OpenChannels::sounds(std::size_t channel) const {
    return engineState.isRunning.get() && signalTicks[channel] > 0
           && !engineState.channelStrips.get()[channel].muted;
}

std::optional<double> OpenChannels::reductionOf(std::size_t channel) const {
    if (engineState.channelStrips.get()[channel].bypassed) return std::nullopt;
    return valueAt(meters.channelGainReductionDB.get(), channel);
}

} // namespace orvane::ui
