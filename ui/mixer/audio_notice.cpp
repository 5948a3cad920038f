#include "ui/mixer/audio_notice.h"

#include "ui/controls/console_button.h"
#include "ui/controls/text_label.h"
#include "ui/theme/theme.h"

#include <QAction>
#include <QHBoxLayout>
#include <QPainter>

namespace orvane::ui {

namespace {

constexpr int padding = 12;
constexpr int verticalPadding = 6;
constexpr int spacing = 10;
constexpr int leastHeight = 44;
/// Large enough to be pressed in a hurry.
constexpr int buttonHeight = 32;

const QString hintTitle = QStringLiteral("No audio device");
const QString hint =
    QStringLiteral("Choose the device that your microphones are connected to, then press Start.");
const QString stoppedTitle = QStringLiteral("Stopped");
const QString otherTitle = QStringLiteral("Another device");
const QString silentTitle = QStringLiteral("No sound");

} // namespace

AudioNotice::AudioNotice(engine::MixerEngine& mixerEngine, QAction& chooseDevice)
    : engine(mixerEngine),
      title(makeText({}, TextStyle::title, theme::primaryText, QFont::Bold)),
      sentence(makeText({}, TextStyle::body)),
      startAgain(new ConsoleButton(QStringLiteral("Start Again"), [this] { engine.restart(); })) {
    title->setWordWrap(false);
    sentence->setTextInteractionFlags(Qt::TextSelectableByMouse);
    setMinimumHeight(leastHeight);
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(padding, verticalPadding, padding, verticalPadding);
    row->setSpacing(spacing);
    row->addWidget(title);
    row->addWidget(sentence, 1);
    auto* const choose =
        new ConsoleButton(QStringLiteral("Choose a Device…"), [&chooseDevice] { chooseDevice.trigger(); });
    for (ConsoleButton* button : {startAgain, choose}) {
        button->setFixedHeight(buttonHeight);
        row->addWidget(button);
    }
    const engine::EngineState& state = engine.state();
    subscriptions.push_back(state.audioLoss.subscribe([this](const auto&) { showState(); }));
    subscriptions.push_back(state.selectedDevice.subscribe([this](const auto&) { showState(); }));
    subscriptions.push_back(state.isRunning.subscribe([this](bool) { showState(); }));
    showState();
}

void AudioNotice::showState() {
    const engine::EngineState& state = engine.state();
    const auto& loss = state.audioLoss.get();
    isLoss = loss.has_value();
    const auto playing = engine.playingDevice();
    const auto& selected = state.selectedDevice.get();
    const bool isOther = playing && selected && playing->uid != selected->uid;
    if (isOther && !isLoss) {
        title->setText(otherTitle);
        sentence->setText(
            QStringLiteral("%1 is used from the next start; %2 still plays.")
                .arg(QString::fromStdString(selected->name), QString::fromStdString(playing->name))
        );
    } else if (isLoss) {
        title->setText(state.isRunning.get() ? silentTitle : stoppedTitle);
        sentence->setText(QString::fromStdString(*loss));
    } else {
        title->setText(hintTitle);
        sentence->setText(hint);
    }
    startAgain->setVisible(isLoss || isOther);
    setVisible(isLoss || isOther || !selected);
    update();
}

void AudioNotice::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), isLoss ? theme::red.darker(150) : theme::selection);
}

} // namespace orvane::ui
