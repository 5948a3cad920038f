#include "ui/mixer/master_peaks.h"

#include "ui/meters/meters.h"

#include <QStringList>

#include <cstddef>
#include <optional>

namespace orvane::ui {

namespace {

const QString lampHelp =
    QStringLiteral("Lit once the master bus or an output has reached full scale. Click to reset all clip "
                   "lamps.");

bool isLimited(const engine::MixerEngine& engine) {
    return engine.state().master.get().outputOptions.limiterCeilingDBTP.has_value();
}

void addOvers(QStringList& lines, const QString& signal, const audio::SignalPeak& peak) {
    lines.append(
        peak.overs == 1 ? QStringLiteral("%1: 1 over").arg(signal)
                        : QStringLiteral("%1: %2 overs").arg(signal).arg(peak.overs)
    );
}

void addOvers(QStringList& lines, const QString& outputs, const std::vector<audio::SignalPeak>& peaks) {
    for (std::size_t i = 0; i < peaks.size(); ++i)
        if (peaks[i].overs > 0) addOvers(lines, outputs.arg(i + 1), peaks[i]);
}

} // namespace

QString oversText(engine::MixerEngine& engine) {
    const audio::MeterModel& meters = engine.meterModel();
    QStringList lines;
    if (!isLimited(engine) && meters.masterPeak.get().overs > 0)
        addOvers(lines, QStringLiteral("Master bus"), meters.masterPeak.get());
    addOvers(lines, QStringLiteral("Output %1"), meters.outputPeaks.get());
    addOvers(lines, QStringLiteral("Output %1 of the master device"), meters.masterOutputPeaks.get());
    return lines.join(QChar(u'\n'));
}

MasterPeaks::MasterPeaks(engine::MixerEngine& mixerEngine, WideMeterColumn& masterMeter)
    : engine(mixerEngine),
      meter(masterMeter),
      lamp(new ClipLamp(QStringLiteral("Output clip"), [this] { engine.meterModel().resetOvers(); })) {
    lamp->setFocusPolicy(Qt::TabFocus);
    meter.setLamp(lamp);
    const audio::MeterModel& meters = engine.meterModel();
    // The model publishes this peak after those of the outputs.
    subscriptions.push_back(meters.masterPeak.subscribe([this](const auto&) {
        showPeak();
        showOvers();
    }));
    subscriptions.push_back(meters.limiterReductionDB.subscribe([this](double) { showReduction(); }));
    subscriptions.push_back(engine.state().isRunning.subscribe([this](bool) { showPeak(); }));
    subscriptions.push_back(engine.state().master.subscribe([this](const auto&) {
        showReduction();
        showOvers();
    }));
    showReduction();
    showOvers();
}

void MasterPeaks::showPeak() {
    const audio::SignalPeak& peak = engine.meterModel().masterPeak.get();
    meter.setPeak(peak.isUsed && engine.state().isRunning.get() ? std::optional(peak.peak) : std::nullopt);
}

void MasterPeaks::showReduction() {
    meter.setReductionDB(
        isLimited(engine) ? std::optional(engine.meterModel().limiterReductionDB.get()) : std::nullopt
    );
}

void MasterPeaks::showOvers() {
    const QString overs = oversText(engine);
    if (overs == shownOvers && !lamp->toolTip().isEmpty()) return;
    shownOvers = overs;
    lamp->setLit(!overs.isEmpty());
    lamp->setToolTip(overs.isEmpty() ? lampHelp : overs + QChar(u'\n') + lampHelp);
}

} // namespace orvane::ui
