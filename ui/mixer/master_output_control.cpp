#include "ui/mixer/master_output_control.h"

#include "ui/controls/console_button.h"
#include "ui/controls/text_label.h"

#include <QFontMetrics>
#include <QHBoxLayout>

#include <utility>
#include <variant>

namespace orvane::ui {

namespace {

constexpr int deviceWidth = 90;
constexpr int pickerWidth = 100;
constexpr int stereoWidth = 32;
constexpr int optionsWidth = 60;
constexpr int rowHeight = 22;
constexpr int spacing = 6;

const QString stereoHelp =
    QStringLiteral("Send the summed/leveled master bus to a stereo output pair (the identical mix duplicated "
                   "to both channels) instead of a single mono output.");
const QString optionsHelp = QStringLiteral("Options for mixes that loudspeakers play in the same room: a "
                                           "leveler that waits in pauses, a limit to one "
                                           "open microphone, gains without steps, and a limiter.");
const QString optionsOnHelp = QStringLiteral(" Highlighted because at least one is on.");
const QString deviceHelp =
    QStringLiteral("The master bus is going out \"%1\" instead of the main device — change this in Device "
                   "Settings → Master Output Device.");

} // namespace

MasterOutputControl::MasterOutputControl(engine::MixerEngine& mixerEngine, std::function<void()> showOptions)
    : engine(mixerEngine),
      device(makeText({}, TextStyle::caption, theme::secondaryText)),
      output(
          QStringLiteral("Master Out"), pickerWidth,
          [this](std::optional<std::int64_t> channel) { choose(channel); }
      ),
      stereo(new ConsoleButton(QStringLiteral("St"), [this] { engine.setMasterStereo(!isStereo()); })),
      options(new ConsoleButton(QStringLiteral("Output…"), std::move(showOptions))) {
    device->setFixedWidth(deviceWidth);
    device->setWordWrap(false);
    output.widget()->setFixedHeight(rowHeight);
    stereo->setAccessibleName(QStringLiteral("Master stereo"));
    stereo->setToolTip(stereoHelp);
    stereo->setFixedSize(stereoWidth, rowHeight);
    options->setFixedSize(optionsWidth, rowHeight);
    QLabel* const caption = makeText(QStringLiteral("Master Out"), TextStyle::caption, theme::secondaryText);
    caption->setWordWrap(false);
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing);
    row->addWidget(caption);
    row->addWidget(device);
    row->addWidget(output.widget());
    row->addWidget(stereo);
    row->addWidget(options);
    row->addStretch();
    const engine::EngineState& state = engine.state();
    const auto follow = [this](const auto& value) {
        subscriptions.push_back(value.subscribe([this](const auto&) { refresh(); }));
    };
    subscriptions.push_back(state.master.subscribe(
        [this, shown = state.master.get().masterOutputRouting](const session::MasterSettings& now) mutable {
            if (std::exchange(shown, now.masterOutputRouting) != now.masterOutputRouting) refresh();
            showWhetherOptionsAreOn();
        }
    ));
    follow(state.masterOutputDevice);
    follow(state.selectedDevice);
    refresh();
    showWhetherOptionsAreOn();
}

void MasterOutputControl::showWhetherOptionsAreOn() {
    const bool areOn = engine.state().master.get().outputOptions != dsp::OutputOptions{};
    options->setActive(areOn);
    options->setToolTip(areOn ? optionsHelp + optionsOnHelp : optionsHelp);
}

bool MasterOutputControl::isStereo() const {
    return std::holds_alternative<session::master_output::Stereo>(
        engine.state().master.get().masterOutputRouting
    );
}

void MasterOutputControl::refresh() {
    const auto& separate = engine.state().masterOutputDevice.get();
    const auto& played = separate ? separate : engine.state().selectedDevice.get();
    output.present(RoutingMenu::outputs(
        played ? played->outputChannelCount : 0, engine.state().master.get().masterOutputRouting
    ));
    stereo->setActive(isStereo());
    device->setVisible(separate.has_value());
    if (!separate) return;
    const QString name = QString::fromStdString(separate->name);
    device->setText(QFontMetrics(device->font()).elidedText(name, Qt::ElideRight, deviceWidth));
    device->setAccessibleName(name);
    device->setToolTip(deviceHelp.arg(name));
}

void MasterOutputControl::choose(std::optional<std::int64_t> channel) {
    if (channel && isStereo())
        engine.setMasterStereoPair(*channel);
    else
        engine.setMasterOutputChannel(channel);
}

} // namespace orvane::ui
