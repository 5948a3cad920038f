#include "ui/windows/status_bar_view.h"

#include "ui/controls/console_button.h"
#include "ui/controls/divider.h"
#include "ui/controls/indicator_lamp.h"
#include "ui/controls/near_touch.h"
#include "ui/controls/text_label.h"
#include "ui/meters/meters.h"
#include "ui/sheets/midi_learn_notice.h"
#include "ui/theme/theme.h"
#include "ui/windows/scene_view.h"
#include "ui/windows/status_cell.h"

#include <QAccessible>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>

#include <algorithm>
#include <cstdint>
#include <optional>

namespace orvane::ui {

namespace {

constexpr int valueSize = 12;
constexpr QSize loadMeterSize(68, 10);
constexpr int loadSegments = 10;
constexpr int pluginCellWidth = 88;
constexpr int dividerHeight = 22;
constexpr int cellSpacing = 12;
constexpr int lineSpacing = 4;
/// The width of the bar from which on notices have room beside the cells.
constexpr int roomyWidth = 1240;
constexpr double hertzPerKilohertz = 1000.0;

const QString copyHelp = QStringLiteral(
    "Arm Copy, then click a loaded plugin slot to copy it (settings included). Click again to cancel."
);
const QString pasteHelp = QStringLiteral("Arm Paste, then click any insert slot to paste %1 there. Stays "
                                         "armed so you can paste it onto more slots "
                                         "— click Paste again (or Copy) to stop.");
const QString learningText = QStringLiteral("Waiting for a MIDI note for");
const QString emptyClipboardHelp = QStringLiteral("Copy a plugin first — nothing on the clipboard yet.");

QLabel* makeValue() {
    auto* const value = new QLabel;
    value->setFont(monospacedFont(valueSize));
    value->setAlignment(Qt::AlignCenter);
    return value;
}

/// Shows a value. Its accessible text includes the name, because assistive tools read only that text.
void showValue(QLabel& label, const QString& name, const QString& value) {
    label.setText(value);
    label.setAccessibleName(QStringLiteral("%1: %2").arg(name, value));
}

QWidget* makeClipboardButtons(ConsoleButton* copy, ConsoleButton* paste) {
    auto* const buttons = new QWidget;
    buttons->setFixedWidth(pluginCellWidth);
    auto* const layout = new QHBoxLayout(buttons);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    for (ConsoleButton* button : {copy, paste}) {
        button->setFixedHeight(StatusCell::valueHeight);
        layout->addWidget(button);
    }
    return buttons;
}

} // namespace

StatusBarView::StatusBarView(engine::MixerEngine& mixerEngine, const MixerCommands& commands, QWidget* parent)
    : QWidget(parent),
      engine(mixerEngine),
      overHint(mixerEngine),
      sampleRate(makeValue()),
      bufferSize(makeValue()),
      audio(new IndicatorLamp(QStringLiteral("Audio"))),
      remote(new IndicatorLamp(QStringLiteral("Remote"))),
      load(new LoadMeterView(loadSegments)),
      copy(new ConsoleButton(QStringLiteral("Copy"), [this] { engine.toggleCopyArm(); })),
      paste(new ConsoleButton(QStringLiteral("Paste"), [this] { engine.togglePasteArm(); })),
      notices(new QWidget(this)),
      lines(new QGridLayout(this)),
      message(makeText({}, TextStyle::caption, theme::orange)),
      learning(new MIDILearnNotice(mixerEngine, TextStyle::caption)) {
    load->setFixedSize(loadMeterSize);
    load->setAccessibleName(QStringLiteral("CPU load"));
    copy->setToolTip(copyHelp);
    new NearTouch(*this);
    message->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto* const row = new QHBoxLayout;
    row->setSpacing(cellSpacing);
    const std::pair<QString, QWidget*> cells[] = {
        {QStringLiteral("SMP RATE"), sampleRate},
        {QStringLiteral("BUFFER"), bufferSize},
        {QStringLiteral("AUDIO"), audio},
        {QStringLiteral("REMOTE"), remote},
        {QStringLiteral("CPU"), load},
        {QStringLiteral("PLUGIN"), makeClipboardButtons(copy, paste)}};
    for (const auto& [caption, value] : cells) {
        if (row->count() > 0) row->addWidget(makeVerticalDivider(dividerHeight));
        row->addWidget(new StatusCell(caption, value));
    }
    row->addWidget(makeVerticalDivider(dividerHeight));
    row->addWidget(new SceneView(engine, commands), 1);
    auto* const noticeRow = new QHBoxLayout(notices);
    noticeRow->setContentsMargins(0, 0, 0, 0);
    noticeRow->setSpacing(cellSpacing);
    noticeRow->addWidget(message, 1);
    noticeRow->addWidget(learning);
    lines->setContentsMargins(14, 5, 14, 5);
    lines->setHorizontalSpacing(cellSpacing);
    lines->setVerticalSpacing(lineSpacing);
    lines->addLayout(row, 1, 0);
    placeNotices();

    subscribe();
    showSampleRate();
    showBufferSize();
    audio->setLit(engine.state().isRunning.get());
    showRemote();
    load->setLoad(engine.meterModel().cpuLoad.get());
    load->setToolTip(loadHelp());
    showClipboard();
    showMessage();
    showLearning();
}

void StatusBarView::subscribe() {
    const engine::EngineState& state = engine.state();
    const auto follow = [this](const auto& value, auto display) {
        subscriptions.push_back(value.subscribe([display](const auto& now) { display(now); }));
    };
    follow(state.selectedDevice, [this](const auto&) { showSampleRate(); });
    follow(state.bufferSize, [this](const auto&) { showBufferSize(); });
    follow(state.isRunning, [this](bool isRunning) {
        audio->setLit(isRunning);
        if (isRunning) peakLoad = 0.0;
        load->setToolTip(loadHelp());
    });
    follow(state.availableMIDIDevices, [this](const auto&) { showRemote(); });
    follow(engine.meterModel().cpuLoad, [this](double share) {
        load->setLoad(share);
        peakLoad = std::max(peakLoad, share);
        load->setToolTip(loadHelp());
    });
    follow(state.pluginClipboard, [this](const auto&) { showClipboard(); });
    follow(state.pluginClipboardArmState, [this](const auto&) { showClipboard(); });
    follow(state.lastError, [this](const auto&) { showMessage(); });
    follow(overHint.text(), [this](const auto&) { showMessage(); });
    follow(state.midiLearnTargetIndex, [this](const auto&) { showLearning(); });
    follow(state.snapshots, [this](const auto&) { showLearning(); });
}

void StatusBarView::resizeEvent(QResizeEvent*) {
    placeNotices();
}

void StatusBarView::placeNotices() {
    const bool isBeside = width() >= roomyWidth;
    lines->removeWidget(notices);
    lines->addWidget(notices, isBeside ? 1 : 0, isBeside ? 1 : 0);
    lines->setColumnStretch(0, isBeside ? 0 : 1);
    lines->setColumnStretch(1, isBeside ? 1 : 0);
    notices->setVisible(isBeside || !message->text().isEmpty() || engine.state().midiLearnTargetIndex.get());
}

void StatusBarView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::panelBackground);
    painter.fillRect(0, 0, width(), 1, theme::divider);
}

QString StatusBarView::loadHelp() const {
    if (!engine.state().isRunning.get())
        return QStringLiteral("How much of each block's time the mix takes, while the audio runs.");
    const int priority = engine.realtimePriority();
    return QStringLiteral("%1 % of each block's time, at most %2 % since the start. Dropouts (xruns): %3. %4")
        .arg(engine.meterModel().cpuLoad.get() * 100.0, 0, 'f', 1)
        .arg(peakLoad * 100.0, 0, 'f', 1)
        .arg(engine.xrunCount())
        .arg(
            priority > 0 ? QStringLiteral("Real-time priority: %1.").arg(priority)
                         : QStringLiteral("No real-time priority was obtained.")
        );
}

void StatusBarView::showSampleRate() {
    const auto& device = engine.state().selectedDevice.get();
    const bool isKnown = device && device->sampleRate > 0.0;
    showValue(
        *sampleRate, QStringLiteral("Sample rate"),
        isKnown ? QStringLiteral("%1k").arg(static_cast<std::int64_t>(device->sampleRate / hertzPerKilohertz))
                : QStringLiteral("--")
    );
}

void StatusBarView::showBufferSize() {
    showValue(*bufferSize, QStringLiteral("Buffer size"), QString::number(engine.state().bufferSize.get()));
}

void StatusBarView::showRemote() {
    remote->setLit(!engine.state().availableMIDIDevices.get().empty());
}

void StatusBarView::showClipboard() {
    using enum plugins::PluginClipboardArmState;
    const plugins::PluginClipboardArmState armed = engine.state().pluginClipboardArmState.get();
    copy->setActive(armed == armedForCopy);
    paste->setActive(armed == armedForPaste);
    const auto& clipboard = engine.state().pluginClipboard.get();
    paste->setToolTip(
        clipboard ? pasteHelp.arg(QString::fromStdString(clipboard->name)) : emptyClipboardHelp
    );
}

void StatusBarView::showMessage() {
    const QString error = QString::fromStdString(engine.state().lastError.get().value_or(""));
    const QString text = error.isEmpty() ? overHint.text().get() : error;
    if (text == message->text()) return;
    message->setText(text);
    QPalette palette = message->palette();
    palette.setColor(QPalette::WindowText, error.isEmpty() ? theme::primaryText : theme::orange);
    message->setPalette(palette);
    placeNotices();
    if (text.isEmpty()) return;
    QAccessibleEvent announcement(message, QAccessible::Alert);
    QAccessible::updateAccessibility(&announcement);
}

void StatusBarView::showLearning() {
    const std::optional<std::int64_t> target = engine.state().midiLearnTargetIndex.get();
    learning->setVisible(target.has_value());
    placeNotices();
    if (!target) return;
    const std::vector<session::Snapshot>& snapshots = engine.state().snapshots.get();
    const bool isThere = *target < static_cast<std::int64_t>(snapshots.size());
    const QString name = isThere ? QString::fromStdString(snapshots[static_cast<std::size_t>(*target)].name)
                                 : QStringLiteral("(no longer there)");
    const QString scene = QStringLiteral("%1 %2").arg(*target + 1).arg(name);
    const QFontMetrics metrics = learning->metrics();
    learning->setText(
        learningText + QChar(u'\n')
        + metrics.elidedText(scene, Qt::ElideRight, metrics.horizontalAdvance(learningText))
    );
    learning->setToolTip(scene);
}

} // namespace orvane::ui
