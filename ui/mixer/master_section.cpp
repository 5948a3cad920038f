#include "ui/mixer/master_section.h"

#include "ui/controls/divider.h"
#include "ui/controls/near_touch.h"
#include "ui/controls/text_label.h"
#include "ui/meters/meters.h"
#include "ui/mixer/master_output_control.h"
#include "ui/theme/theme.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QScrollBar>
#include <QVBoxLayout>

#include <cmath>
#include <limits>
#include <utility>

namespace orvane::ui {

namespace {

constexpr int padding = 12;
constexpr int verticalPadding = 10;
constexpr int lineSpacing = 6;
constexpr int mixPadding = 6;
constexpr int mixLineSpacing = 2;
constexpr int mixGroupSpacing = 8;
constexpr int groupSpacing = 10;
constexpr int faderSpacing = 8;
constexpr int dividerHeight = 20;
constexpr int targetWidth = 140;
constexpr int faderWidth = 160;
constexpr int releaseWidth = 260;
constexpr int decibelWidth = 56;
constexpr int millisecondWidth = 60;
constexpr int factorWidth = 50;
/// The room beside the title.
constexpr int statusWidth = 190;
constexpr int mixStatusWidth = 120;

const QString targetHelp =
    QStringLiteral("Target level for the total (summed) master output — e.g. 1 singer alone and a full choir "
                   "together will both be leveled to land at this dB.");
const QString groupHelp =
    QStringLiteral("Group fader — adjusts the output level of every channel assigned to the %1 vocal role, "
                   "on top of that channel's own trim and automix gain.");
const QString releaseHelp = QStringLiteral(
    "How long a channel takes to relax back down once it's no longer the loudest/most active source -- i.e. "
    "how fast the automix closes a channel after someone stops singing. Lower = closes sooner (a tighter, "
    "snappier automix); higher = stays open longer before ducking down (gentler, less likely to clip off "
    "word endings). Applies to every channel, including the pink-noise reference channel. Default 400ms."
);
const QString noiseHelp = QStringLiteral(
    "How loud the constant pink-noise reference signal is, from the automix's point of view -- 0 disables it "
    "entirely (no effect on the mix at all). Raising it makes the automix treat \"nobody singing\" more "
    "assertively, pushing genuinely-silent real mics further down instead of sitting open. This noise is "
    "never sent to any output -- it only competes in the automix gain-sharing decision."
);

QString writeDecibels(double value) {
    return QStringLiteral("%1 dB").arg(value, 0, 'f', 1);
}

QString writeMilliseconds(double value) {
    return QStringLiteral("%1 ms").arg(std::trunc(value), 0, 'f', 0);
}

QString writeFactor(double value) {
    return QStringLiteral("×%1").arg(value, 0, 'f', 2);
}

ValueRow::Style decibels(double lowest, double highest, double usual, int width, const QString& help) {
    return {
        .range = {.lowest = lowest, .highest = highest, .step = 0.5, .defaultValue = usual},
        .sliderWidth = width,
        .valueWidth = decibelWidth,
        .write = writeDecibels,
        .help = help};
}

ValueRow::Style groupGain(const QString& group) {
    ValueRow::Style style = decibels(-24.0, 12.0, 0.0, faderWidth, groupHelp.arg(group));
    style.range.fillsFromDefault = true;
    return style;
}

QLabel* makeLine(const QString& text, TextStyle style, const QColor& color, QFont::Weight weight) {
    QLabel* const label = makeText(text, style, color, weight);
    label->setWordWrap(false);
    return label;
}

QLabel* makeTitle(const QString& text) {
    return makeLine(text, TextStyle::body, theme::primaryText, QFont::Bold);
}

QLabel* makeCaption(const QString& text) {
    return makeLine(text, TextStyle::caption, theme::secondaryText, QFont::Normal);
}

QVBoxLayout* makeGroup() {
    auto* const lines = new QVBoxLayout;
    lines->setSpacing(lineSpacing);
    return lines;
}

/// Makes a row: the first widget at the left, the others at the right if `spread`.
template <class... Widgets>
QHBoxLayout* makeRow(bool spread, QWidget* first, Widgets*... others) {
    auto* const row = new QHBoxLayout;
    row->setSpacing(faderSpacing);
    row->addWidget(first);
    if (spread) row->addStretch();
    (row->addWidget(others), ...);
    if (!spread) row->addStretch();
    return row;
}

} // namespace

MasterSection::MasterSection(engine::MixerEngine& mixerEngine, std::function<void()> showOutputOptions)
    : engine(mixerEngine),
      target(
          QStringLiteral("Target"), decibels(-30.0, 0.0, -10.0, targetWidth, targetHelp),
          [this](double value) { engine.setMasterTargetDB(value); }
      ),
      lead(
          QStringLiteral("Lead"), groupGain(QStringLiteral("Lead")),
          [this](double value) { engine.setLeadGroupGainDB(value); }
      ),
      backing(
          QStringLiteral("Backing"), groupGain(QStringLiteral("Backing")),
          [this](double value) { engine.setBackingGroupGainDB(value); }
      ),
      release(
          QStringLiteral("Ducker Speed"),
          {.range = {.lowest = 50.0, .highest = 3000.0, .defaultValue = 400.0},
           .sliderWidth = releaseWidth,
           .valueWidth = millisecondWidth,
           .write = writeMilliseconds,
           .help = releaseHelp},
          [this](double value) { engine.setDuckerReleaseMs(value); }
      ),
      noise(
          QStringLiteral("Input Volume"),
          {.range = {.lowest = 0.0, .highest = 2.0, .defaultValue = 0.0},
           .sliderWidth = faderWidth,
           .valueWidth = factorWidth,
           .write = writeFactor,
           .help = noiseHelp},
          [this](double value) { engine.setReferenceNoiseGain(value); }
      ),
      status(makeCaption({})),
      output(new MasterOutputControl(engine, std::move(showOutputOptions))),
      masterMeter(new WideMeterColumn(
          QStringLiteral("Master level"), engine.meterModel().masterMeter, engine.state().isRunning
      )),
      noiseMeter(new WideMeterColumn(
          QStringLiteral("Pink Noise level"), engine.meterModel().pinkNoiseLevel, engine.state().isRunning,
          theme::pink
      )),
      peaks(engine, *masterMeter) {
    setFrameShape(QFrame::NoFrame);
    setAccessibleName(QStringLiteral("Master section"));
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(true);

    auto* const content = new QWidget;
    content->setFocusPolicy(Qt::ClickFocus);
    auto* const row = new QHBoxLayout(content);
    QLayout* const made[] = {makeMasterGroup(), makeGroupFaders(), makeDuckerGroup(), makeNoiseGroup()};
    for (QLayout* group : made) {
        if (row->count() > 0) row->addWidget(makeVerticalDivider(dividerHeight), 0, Qt::AlignVCenter);
        row->addLayout(group);
    }
    row->addStretch();
    setWidget(content);
    setPresentation(StripPresentation::setup);
    new NearTouch(*content);

    subscriptions.push_back(engine.state().master.subscribe([this](const auto&) { showSettings(); }));
    subscriptions.push_back(engine.state().isRunning.subscribe([this](bool) { showStatus(); }));
    subscriptions.push_back(engine.state().selectedDevice.subscribe([this](const auto&) { showStatus(); }));
    showSettings();
    showStatus();
}

void MasterSection::showSettings() {
    const session::MasterSettings& master = engine.state().master.get();
    target.show(master.levels.masterTargetDB);
    lead.show(master.levels.leadGroupGainDB);
    backing.show(master.levels.backingGroupGainDB);
    release.show(master.duckerReleaseMs);
    noise.show(master.referenceNoiseGain);
}

QLayout* MasterSection::makeMasterGroup() {
    masterLines = makeGroup();
    masterLines->addLayout(makeRow(true, makeTitle(QStringLiteral("Master")), status));
    masterLines->addWidget(masterMeter);
    masterLines->addLayout(makeRow(false, makeCaption(QStringLiteral("Target")), target.slider, target.value)
    );
    masterLines->addStretch();
    return masterLines;
}

QLayout* MasterSection::makeGroupFaders() {
    auto* const faders = new QHBoxLayout;
    faders->setSpacing(faderSpacing);
    for (ValueRow* fader : {&lead, &backing}) {
        QVBoxLayout* const lines = makeGroup();
        lines->addLayout(makeRow(true, makeTitle(fader->slider->accessibleName()), fader->value));
        lines->addWidget(fader->slider);
        faders->addLayout(lines);
    }
    groupLines = makeGroup();
    groupLines->addLayout(faders);
    groupLines->addStretch();
    return groupLines;
}

QLayout* MasterSection::makeDuckerGroup() {
    QVBoxLayout* const lines = makeGroup();
    lines->addLayout(makeRow(true, makeTitle(QStringLiteral("Ducker Speed")), release.value));
    lines->addWidget(release.slider);
    lines->addLayout(makeRow(true, makeCaption(QStringLiteral("Fast")), makeCaption(QStringLiteral("Slow"))));
    QLabel* const caption = makeText(
        QStringLiteral("How fast a channel closes back down after it stops being active."),
        TextStyle::caption, theme::secondaryText
    );
    caption->setFixedWidth(releaseWidth);
    explanations.push_back(caption);
    lines->addWidget(caption);
    lines->addStretch();
    return lines;
}

QLayout* MasterSection::makeNoiseGroup() {
    QVBoxLayout* const lines = makeGroup();
    lines->addWidget(makeTitle(QStringLiteral("Pink Noise")));
    lines->addWidget(noiseMeter);
    lines->addLayout(makeRow(false, makeCaption(QStringLiteral("Input Volume")), noise.slider, noise.value));
    explanations.push_back(makeText(
        QStringLiteral("Reference signal for the automix only — never sent to any output."),
        TextStyle::caption, theme::secondaryText
    ));
    lines->addWidget(explanations.back());
    lines->addStretch();
    return lines;
}

void MasterSection::showStatus() {
    const auto& device = engine.state().selectedDevice.get();
    const QString text =
        engine.state().isRunning.get()
            ? QStringLiteral("Running — %1").arg(QString::fromStdString(device ? device->name : ""))
            : QStringLiteral("Stopped");
    const int room = presentation == StripPresentation::mix ? mixStatusWidth : statusWidth;
    const QString fitting = status->fontMetrics().elidedText(text, Qt::ElideRight, room);
    status->setText(fitting);
    status->setToolTip(fitting == text ? QString() : text);
    status->setAccessibleName(text);
}

void MasterSection::setPresentation(StripPresentation now) {
    const bool isMix = now == StripPresentation::mix;
    if (isMix && presentation != now) setupSize = widget()->minimumSizeHint();
    presentation = now;
    for (QWidget* text : explanations)
        text->setHidden(isMix);
    for (const ValueRow* each : {&target, &lead, &backing, &release, &noise})
        each->setShrinking(isMix);
    for (WideMeterColumn* meter : {masterMeter, noiseMeter})
        meter->setShrinking(isMix);
    for (QBoxLayout* lines : {masterLines, groupLines})
        lines->removeWidget(output);
    QBoxLayout* const place = isMix ? groupLines : masterLines;
    place->insertWidget(place->count() - 1, output);
    const int vertical = isMix ? mixPadding : verticalPadding;
    widget()->layout()->setContentsMargins(padding, vertical, padding, vertical);
    widget()->layout()->setSpacing(isMix ? mixGroupSpacing : groupSpacing);
    masterLines->setSpacing(isMix ? mixLineSpacing : lineSpacing);
    showStatus();
    updateHeight();
}

void MasterSection::updateHeight() {
    setFixedHeight(heightFor(widget()->minimumSizeHint(), width()));
}

int MasterSection::heightFor(QSize needed, int availableWidth) const {
    return needed.height()
           + (needed.width() > availableWidth ? horizontalScrollBar()->sizeHint().height() : 0);
}

int MasterSection::heightForSetup(int availableWidth) const {
    const bool isSetup = presentation == StripPresentation::setup;
    return heightFor(isSetup ? widget()->minimumSizeHint() : setupSize, availableWidth);
}

QSize MasterSection::sizeHint() const {
    const QSize needed = widget()->minimumSizeHint();
    return {needed.width(), heightFor(needed, std::numeric_limits<int>::max())};
}

void MasterSection::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    updateHeight();
}

void MasterSection::keyPressEvent(QKeyEvent* event) {
    // Keys that no control accepts are shortcuts of the mixer, not of the scroll bar.
    event->ignore();
}

} // namespace orvane::ui
