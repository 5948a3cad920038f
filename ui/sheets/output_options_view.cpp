#include "ui/sheets/output_options_view.h"

#include "dsp/true_peak_limiter.h"
#include "ui/controls/console_button.h"
#include "ui/controls/divider.h"
#include "ui/controls/segmented_picker.h"
#include "ui/controls/text_label.h"
#include "ui/meters/meters.h"
#include "ui/mixer/master_peaks.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QScrollArea>
#include <QVBoxLayout>

#include <cstddef>
#include <optional>

namespace orvane::ui {

namespace {

using dsp::OutputOptions;

constexpr QSize sheetSize(460, 540);
constexpr int padding = 20;
constexpr int optionSpacing = 14;
constexpr int lineSpacing = 4;
constexpr int rowSpacing = 8;
constexpr QSize pickerSize(210, 24);
constexpr int ceilingWidth = 160;
constexpr int ceilingValueWidth = 72;
constexpr QSize reductionSize(240, 8);
constexpr int reductionSegments = 60;
constexpr int resetWidth = 90;
constexpr double usualCeilingDBTP = -1.0;
constexpr double usualSampleRate = 48000.0;
constexpr double msPerSecond = 1000.0;

const QString levelerHelp =
    QStringLiteral("Hold waits while nobody talks and turns up slowly, so that pauses stay as quiet as they "
                   "are; Follow always moves towards the target; Off leaves the level alone.");
const QString limiterHelp =
    QStringLiteral("Keeps the true peak of every output that carries the master bus below the ceiling, and "
                   "delays these outputs by %1 ms.");
const QString noOvers = QStringLiteral("Neither the master bus nor an output has reached full scale.");

struct Switch {
    QString name;
    bool OutputOptions::*option;
    QString help;
};

const std::array<Switch, 3>& allSwitches() {
    static const std::array<Switch, 3> all = {{
        {QStringLiteral("Gain Ramps"), &OutputOptions::gainRamps,
         QStringLiteral("Gains run in a line over each block instead of stepping at its edge, which matters "
                        "with buffers of 256 frames and more.")},
        {QStringLiteral("Open-Microphone Limit"), &OutputOptions::openMicrophoneLimit,
         QStringLiteral("All microphones together are as open as a single one, so that their noise and the "
                        "risk of feedback do not add up in pauses.")},
        {QStringLiteral("Fast Onset"), &OutputOptions::fastOnset,
         QStringLiteral("A voice is open within its first 5 ms, also right after another speaker.")},
    }};
    return all;
}

QString writeCeiling(double value) {
    return QStringLiteral("%1 dBTP").arg(value, 0, 'f', 1);
}

QCheckBox* makeSwitch(const QString& name) {
    auto* const made = new QCheckBox(name);
    made->setFont(textFont(TextStyle::body, QFont::Bold));
    return made;
}

/// Adds an option: a row of controls and a sentence below it.
void addOption(QBoxLayout& lines, QLayout* row, const QString& help) {
    auto* const option = new QVBoxLayout;
    option->setSpacing(lineSpacing);
    option->addLayout(row);
    option->addWidget(makeText(help, TextStyle::caption, theme::secondaryText));
    lines.addLayout(option);
}

/// Makes a row: the first widget at the left, the others at the right.
template <class... Widgets>
QHBoxLayout* makeRow(QWidget* first, Widgets*... others) {
    auto* const row = new QHBoxLayout;
    row->setSpacing(rowSpacing);
    row->addWidget(first, 1);
    (row->addWidget(others), ...);
    return row;
}

/// Changes one thing about the options of a mixer.
template <class Change>
auto edit(engine::MixerEngine& engine, Change change) {
    return [&engine, change](auto value) {
        OutputOptions options = engine.state().master.get().outputOptions;
        change(options, value);
        engine.setOutputOptions(options);
    };
}

double limiterLatencyMs(const engine::EngineState& state) {
    const auto& device = state.selectedDevice.get();
    const double rate = device && device->sampleRate > 0.0 ? device->sampleRate : usualSampleRate;
    return msPerSecond * static_cast<double>(dsp::TruePeakLimiter::latencyFrames(rate)) / rate;
}

} // namespace

OutputOptionsView::OutputOptionsView(engine::MixerEngine& mixerEngine, QWidget* parent)
    : Sheet(QStringLiteral("Output"), sheetSize, parent),
      engine(mixerEngine),
      leveler(new SegmentedPicker(
          QStringLiteral("Leveler"),
          {QStringLiteral("Follow"), QStringLiteral("Hold"), QStringLiteral("Off")},
          edit(
              engine,
              [](OutputOptions& options, int mode) { options.leveler = static_cast<dsp::LevelerMode>(mode); }
          )
      )),
      limiter(makeSwitch(QStringLiteral("Limiter"))),
      ceiling(
          QStringLiteral("Ceiling"),
          {.range =
               {.lowest = dsp::lowestCeilingDBTP,
                .highest = dsp::highestCeilingDBTP,
                .step = 0.5,
                .defaultValue = usualCeilingDBTP},
           .sliderWidth = ceilingWidth,
           .valueWidth = ceilingValueWidth,
           .write = writeCeiling,
           .help = QStringLiteral("The highest true peak that leaves, in dB.")},
          edit(engine, [](OutputOptions& options, double value) { options.limiterCeilingDBTP = value; })
      ),
      reduction(new GateMeterView(reductionSegments)),
      reductionText(makeText({}, TextStyle::caption)),
      overs(makeText({}, TextStyle::caption)) {
    setWindowModality(Qt::NonModal);
    auto* const content = new QWidget;
    auto* const lines = new QVBoxLayout(content);
    lines->setContentsMargins(padding, padding, padding, padding);
    lines->setSpacing(optionSpacing);
    addLeveler(*lines);
    addSwitches(*lines);
    addLimiter(*lines);
    lines->addWidget(makeHorizontalDivider());
    addOvers(*lines);
    lines->addStretch();
    QWidget* const done = makeDoneButton(*this);
    auto* const whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, padding);
    whole->addWidget(makeSheetArea(content));
    auto* const buttonBar = new QHBoxLayout;
    buttonBar->setContentsMargins(padding, 0, padding, 0);
    buttonBar->addStretch();
    buttonBar->addWidget(done);
    whole->addLayout(buttonBar);
    done->setFocus();

    subscriptions.push_back(engine.state().master.subscribe([this](const auto&) { showOptions(); }));
    const audio::MeterModel& meters = engine.meterModel();
    subscriptions.push_back(meters.limiterReductionDB.subscribe([this](double now) { showReduction(now); }));
    subscriptions.push_back(meters.masterPeak.subscribe([this](const auto&) { showOvers(); }));
    showOptions();
    showReduction(meters.limiterReductionDB.get());
}

void OutputOptionsView::addLeveler(QBoxLayout& lines) {
    leveler->setNeutral(0);
    leveler->setFixedSize(pickerSize);
    QLabel* const title =
        makeText(QStringLiteral("Leveler"), TextStyle::body, theme::primaryText, QFont::Bold);
    addOption(lines, makeRow(title, leveler), levelerHelp);
}

void OutputOptionsView::addSwitches(QBoxLayout& lines) {
    for (std::size_t i = 0; i < switches.size(); ++i) {
        const Switch& shown = allSwitches()[i];
        switches[i] = makeSwitch(shown.name);
        connect(
            switches[i], &QCheckBox::clicked, this,
            edit(
                engine, [option = shown.option](OutputOptions& options, bool isOn) { options.*option = isOn; }
            )
        );
        addOption(lines, makeRow(switches[i]), shown.help);
    }
}

void OutputOptionsView::addLimiter(QBoxLayout& lines) {
    connect(limiter, &QCheckBox::clicked, this, edit(engine, [](OutputOptions& options, bool isOn) {
                options.limiterCeilingDBTP = isOn ? std::optional(usualCeilingDBTP) : std::nullopt;
            }));
    addOption(
        lines, makeRow(limiter, ceiling.slider, ceiling.value),
        limiterHelp.arg(limiterLatencyMs(engine.state()), 0, 'f', 1)
    );
    reduction->setFixedSize(reductionSize);
    reduction->setAccessibleName(QStringLiteral("Limiter reduction"));
    reductionText->setWordWrap(false);
    reductionText->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    reductionText->setFixedWidth(ceilingValueWidth);
    lines.addLayout(makeRow(
        makeText(QStringLiteral("Reduction"), TextStyle::caption, theme::secondaryText), reduction,
        reductionText
    ));
}

void OutputOptionsView::addOvers(QBoxLayout& lines) {
    auto* const reset =
        new ConsoleButton(QStringLiteral("Reset"), [this] { engine.meterModel().resetOvers(); });
    reset->setAccessibleName(QStringLiteral("Reset clip lamps"));
    reset->setFixedWidth(resetWidth);
    lines.addLayout(
        makeRow(makeText(QStringLiteral("Overs"), TextStyle::body, theme::primaryText, QFont::Bold), reset)
    );
    lines.addWidget(overs);
}

void OutputOptionsView::showOptions() {
    const OutputOptions& options = engine.state().master.get().outputOptions;
    leveler->setCurrent(static_cast<int>(options.leveler));
    for (std::size_t i = 0; i < switches.size(); ++i)
        switches[i]->setChecked(options.*allSwitches()[i].option);
    const bool isLimited = options.limiterCeilingDBTP.has_value();
    limiter->setChecked(isLimited);
    ceiling.show(options.limiterCeilingDBTP.value_or(usualCeilingDBTP));
    ceiling.slider->setEnabled(isLimited);
    ceiling.value->setEnabled(isLimited);
    showOvers();
}

void OutputOptionsView::showReduction(double reductionDB) {
    reduction->setReductionDB(reductionDB);
    reductionText->setText(QStringLiteral("%1 dB").arg(reductionDB, 0, 'f', 1));
}

void OutputOptionsView::showOvers() {
    const QString text = oversText(engine);
    overs->setText(text.isEmpty() ? noOvers : text);
}

} // namespace orvane::ui
