#include "ui/strip/strip_levels.h"

#include "dsp/decibels.h"
#include "ui/controls/text_label.h"
#include "ui/controls/value_field.h"
#include "ui/controls/vertical_fader.h"
#include "ui/meters/meters.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include <cmath>
#include <functional>

namespace orvane::ui {

namespace {

constexpr int gap = 4;
constexpr int captionSize = 9;
constexpr QSize faderTrackSize(36, 130);
constexpr QSize smallestFader(30, 48);
constexpr int valueWidth = 44;
constexpr int mixValueWidth = 36;
constexpr int mixGap = 2;
constexpr double highestTrim = 2.0;

const QString trimHelp = QStringLiteral(
    "Trim — a plain per-channel level control, applied on top of whatever the automix (or bypass) is already "
    "doing. The white stripe marks unity (1.0×, no change) — click it, or drag near it, to snap back to "
    "unity. Drag up to boost, down to cut."
);

QString writeTrim(double trim) {
    return QStringLiteral("×%1").arg(trim, 0, 'f', 2);
}

QString writeDecibels(double trim) {
    if (trim <= 0.0) return QStringLiteral("−∞ dB");
    // No negative zero.
    const double decibels = std::round(dsp::linearToDB(trim) * 10.0) / 10.0 + 0.0;
    return QStringLiteral("%1 dB").arg(decibels, 0, 'f', 1);
}

/// A number with a sign or with "dB" is in dB, as no factor is negative.
double readTrim(double number, const QString& text) {
    const bool isDecibels = text.contains(QStringLiteral("dB"), Qt::CaseInsensitive) || number < 0.0
                            || text.trimmed().startsWith(QChar(u'+'));
    return isDecibels ? dsp::dbToLinear(number) : number;
}

std::function<void(double)> trimSetter(engine::MixerEngine& engine, std::size_t index) {
    return [&engine, id = engine.state().channelStrips.get()[index].id](double factor) {
        engine.setTrim(id, factor);
    };
}

} // namespace

StripLevels::StripLevels(engine::MixerEngine& mixerEngine, std::size_t index)
    : meters(new ChannelMeterColumn(mixerEngine.meterModel(), index, mixerEngine.state().isRunning)),
      trim(new VerticalFader(
          {.lowest = 0.0, .highest = highestTrim, .defaultValue = 1.0}, trimSetter(mixerEngine, index)
      )),
      trimValue(new ValueField(
          QStringLiteral("Trim value"),
          {.write = writeTrim,
           .read = readTrim,
           .highest = highestTrim,
           .width = valueWidth,
           .alignment = Qt::AlignHCenter},
          trimSetter(mixerEngine, index)
      )),
      decibels(makeText({}, TextStyle::caption2, theme::secondaryText)) {
    trim->setAccessibleName(QStringLiteral("Trim"));
    trim->setToolTip(trimHelp);
    QLabel* const caption = makeText(QStringLiteral("Trim"), TextStyle::caption2, theme::secondaryText);
    caption->setFont(systemFont(captionSize));
    caption->setAlignment(Qt::AlignCenter);
    decibels->setAlignment(Qt::AlignCenter);
    decibels->setWordWrap(false);

    auto* const fader = new QVBoxLayout;
    // The room for the thumb separates them.
    fader->setSpacing(0);
    fader->addWidget(caption);
    fader->addWidget(trim, 1, Qt::AlignHCenter);
    fader->addWidget(trimValue, 0, Qt::AlignHCenter);
    fader->addWidget(decibels);
    fader->addStretch();
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(meters, 1);
    row->addStretch();
    row->addLayout(fader);
    setPresentation(StripPresentation::setup);
}

void StripLevels::setPresentation(StripPresentation presentation) {
    const bool grows = presentation == StripPresentation::mix;
    const QMargins overhang(0, trim->overhang(), 0, trim->overhang());
    trim->setMinimumSize(grows ? smallestFader : faderTrackSize.grownBy(overhang));
    trim->setMaximumSize(trim->minimumWidth(), grows ? QWIDGETSIZE_MAX : trim->minimumHeight());
    trim->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    trimValue->setFixedWidth(grows ? mixValueWidth : valueWidth);
    layout()->setSpacing(grows ? mixGap : gap);
    meters->setGrowing(grows);
    decibels->setVisible(grows);
}

void StripLevels::setDimmed(bool isDimmed) {
    meters->setReductionDimmed(isDimmed);
}

void StripLevels::setTrim(double factor) {
    trim->setValue(factor);
    trimValue->setValue(factor);
    const QString written = writeDecibels(factor);
    decibels->setText(written);
    trimValue->setToolTip(
        QStringLiteral("Trim: %1. Type a factor such as 0.5, or a level such as -6 dB.").arg(written)
    );
}

} // namespace orvane::ui
