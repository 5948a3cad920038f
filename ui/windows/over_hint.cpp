#include "ui/windows/over_hint.h"

#include "audio/routing_table.h"

#include <algorithm>

namespace orvane::ui {

namespace {

const QString masterHint = QStringLiteral("%1 went over full scale: lower Target or switch the limiter on.");
const QString stripHint =
    QStringLiteral("%1 went over full scale: lower the trims of the strips that it plays.");

/// Returns the first output with overs; the number of outputs if there is none.
std::size_t firstOver(const std::vector<audio::SignalPeak>& peaks) {
    const auto isOver = [](const audio::SignalPeak& peak) { return peak.overs > 0; };
    return static_cast<std::size_t>(std::ranges::find_if(peaks, isOver) - peaks.begin());
}

} // namespace

OverHint::OverHint(engine::MixerEngine& mixerEngine) : engine(mixerEngine) {
    // The model publishes this peak after those of the outputs.
    subscriptions.push_back(engine.meterModel().masterPeak.subscribe([this](const auto&) { look(); }));
    subscriptions.push_back(engine.state().master.subscribe([this](const auto&) {
        if (!hint.get().isEmpty()) hint.set({});
    }));
}

void OverHint::look() {
    const std::vector<audio::SignalPeak>& main = engine.meterModel().outputPeaks.get();
    const std::vector<audio::SignalPeak>& master = engine.meterModel().masterOutputPeaks.get();
    const std::size_t onMain = firstOver(main);
    const std::size_t onMaster = firstOver(master);
    const bool isOver = onMain < main.size() || onMaster < master.size();
    if (!isOver && !hint.get().isEmpty()) hint.set({});
    if (!isOver || isSpent) return;
    isSpent = true;
    if (onMain < main.size())
        hint.set(
            (carriesMaster(onMain) ? masterHint : stripHint).arg(QStringLiteral("Output %1").arg(onMain + 1))
        );
    else
        hint.set(masterHint.arg(QStringLiteral("Output %1 of the master device").arg(onMaster + 1)));
}

bool OverHint::carriesMaster(std::size_t output) const {
    if (engine.state().masterOutputDevice.get()) return false;
    const audio::Sends sends = audio::sendsOf(engine.state().master.get().masterOutputRouting);
    return std::ranges::any_of(sends, [output](const audio::Send& send) { return send.channel == output; });
}

} // namespace orvane::ui
