#include "ui/sheets/snapshots_view.h"

#include "ui/controls/console_button.h"
#include "ui/controls/divider.h"
#include "ui/controls/near_touch.h"
#include "ui/controls/text_label.h"
#include "ui/controls/text_prompt.h"
#include "ui/sheets/midi_learn_notice.h"
#include "ui/sheets/snapshot_list_view.h"
#include "ui/theme/symbols.h"
#include "ui/theme/theme.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QScrollArea>
#include <QToolButton>
#include <QVBoxLayout>

#include <cstdint>
#include <tuple>
#include <utility>

namespace orvane::ui {

namespace {

constexpr QSize sheetSize(440, 660);
constexpr int padding = 16;
constexpr int lineSpacing = 10;
constexpr int lowestList = 112;
constexpr QSize mainButtonSize(72, 22);
constexpr int iconSize = 16;
constexpr int insertLabelWidth = 56;
constexpr QSize saveButtonSize(72, theme::touchTarget);

/// The widest text that does not move the buttons.
const QString widePosition = QStringLiteral("100 / 100");
const QString noPosition = QStringLiteral("—");
const QString learningText = QStringLiteral("Waiting for a MIDI note… (send one from your controller)");
const QString emptyText = QStringLiteral("No snapshots yet — tap New to capture the current mix.");
const QString recallSafeHelp =
    QStringLiteral("Recall-Safe: this insert's plugin won't change when you recall a different snapshot.");
const QString presetMessage = QStringLiteral("Saves the current settings of whatever plugin is loaded into "
                                             "Insert %1 on every channel, so you can recall "
                                             "all of them at once later.");

QToolButton* makeIconButton(const QString& icon, const QString& name, Qt::ToolButtonStyle style) {
    auto* const button = new QToolButton;
    button->setIcon(symbol(icon));
    button->setIconSize({iconSize, iconSize});
    button->setText(name);
    button->setAccessibleName(name);
    button->setToolButtonStyle(style);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    button->setFont(textFont(TextStyle::callout));
    button->setMinimumHeight(theme::touchTarget);
    return button;
}

} // namespace

SnapshotsView::SnapshotsView(engine::MixerEngine& mixerEngine, QWidget* parent)
    : Sheet(QStringLiteral("Snapshots"), sheetSize, parent),
      engine(mixerEngine),
      position(makeText({}, TextStyle::body)),
      learning(new MIDILearnNotice(mixerEngine, TextStyle::callout)),
      empty(makeText(emptyText, TextStyle::callout, theme::secondaryText)),
      list(new SnapshotListView(mixerEngine)) {
    setWindowModality(Qt::NonModal);
    position->setFont(monospacedFont(13));
    position->setAlignment(Qt::AlignCenter);
    position->setWordWrap(false);
    position->setMinimumWidth(position->fontMetrics().horizontalAdvance(widePosition));
    learning->setText(learningText);
    empty->setAlignment(Qt::AlignCenter);

    list->setMinimumHeight(lowestList);

    auto* const content = new QWidget;
    new NearTouch(*content);
    auto* const lines = new QVBoxLayout(content);
    lines->setContentsMargins(padding, padding, padding, padding);
    lines->setSpacing(lineSpacing);
    QWidget* const done = makeDoneButton(*this);
    lines->addLayout(makeHeader(done));
    lines->addLayout(makeNavigation());
    lines->addLayout(makeMainButtons());
    lines->addWidget(learning);
    lines->addLayout(makeEditButtons());
    lines->addWidget(list, 1);
    lines->addWidget(empty, 1);
    lines->addWidget(makeHorizontalDivider());
    lines->addWidget(makeText(
        QStringLiteral("PLUGIN PRESETS (ALL CHANNELS)"), TextStyle::caption, theme::secondaryText, QFont::Bold
    ));
    for (std::size_t slot = 0; slot < insertRows; ++slot)
        lines->addLayout(makeInsertRow(slot));
    auto* const whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->addWidget(makeSheetArea(content));

    subscribe();
    showPosition();
    showLearning();
    showRecallSafe();
    // Space must not change anything before the operator has chosen a control.
    (list->count() > 0 ? list : done)->setFocus();
}

QLayout* SnapshotsView::makeHeader(QWidget* done) {
    auto* const row = new QHBoxLayout;
    row->addWidget(
        makeText(QStringLiteral("Snapshots"), TextStyle::title3, theme::primaryText, QFont::Bold), 1
    );
    row->addWidget(done);
    return row;
}

QLayout* SnapshotsView::makeNavigation() {
    auto* const row = new QHBoxLayout;
    const auto addButton = [&](const QString& icon, const QString& name,
                               void (engine::MixerEngine::*operation)()) {
        QToolButton* const button = makeIconButton(icon, name, Qt::ToolButtonIconOnly);
        button->setToolTip(name);
        connect(button, &QToolButton::clicked, this, action(operation));
        row->addWidget(button);
    };
    row->addStretch();
    addButton(
        QStringLiteral("previous"), QStringLiteral("Previous snapshot"),
        &engine::MixerEngine::selectPreviousSnapshot
    );
    row->addWidget(position);
    addButton(
        QStringLiteral("next"), QStringLiteral("Next snapshot"), &engine::MixerEngine::selectNextSnapshot
    );
    row->addStretch();
    return row;
}

QLayout* SnapshotsView::makeMainButtons() {
    auto* const row = new QHBoxLayout;
    row->setSpacing(8);
    row->addStretch();
    const auto addButton = [row](const QString& title, std::function<void()> onPress) {
        auto* const button = new ConsoleButton(title, std::move(onPress));
        button->setFixedSize(mainButtonSize);
        row->addWidget(button);
        return button;
    };
    addButton(QStringLiteral("Store"), action(&engine::MixerEngine::storeSnapshot));
    addButton(QStringLiteral("New"), [this] {
        list->commitRenaming();
        engine.newSnapshot();
    });
    recall = addButton(QStringLiteral("Recall"), action(&engine::MixerEngine::recallCurrentSnapshot));
    midi = addButton(QStringLiteral("MIDI"), [this] { toggleLearning(); });
    row->addStretch();
    return row;
}

QLayout* SnapshotsView::makeEditButtons() {
    auto* const row = new QHBoxLayout;
    row->setSpacing(8);
    row->addStretch();
    const std::tuple<QString, QString, void (engine::MixerEngine::*)()> buttons[] = {
        {QStringLiteral("undo"), QStringLiteral("Undo"), &engine::MixerEngine::undoSnapshotEdit},
        {QStringLiteral("copy"), QStringLiteral("Copy"), &engine::MixerEngine::copySnapshot},
        {QStringLiteral("insert"), QStringLiteral("Insert"), &engine::MixerEngine::insertSnapshot},
        {QStringLiteral("delete"), QStringLiteral("Delete"), &engine::MixerEngine::deleteSnapshot}};
    for (const auto& [icon, title, operation] : buttons) {
        QToolButton* const button = makeIconButton(icon, title, Qt::ToolButtonTextBesideIcon);
        connect(button, &QToolButton::clicked, this, action(operation));
        row->addWidget(button);
    }
    row->addStretch();
    return row;
}

QLayout* SnapshotsView::makeInsertRow(std::size_t slot) {
    const QString name = QStringLiteral("Insert %1").arg(slot + 1);
    auto* const row = new QHBoxLayout;
    row->setSpacing(12);
    QLabel* const label = makeText(name, TextStyle::callout);
    label->setFixedWidth(insertLabelWidth);
    row->addWidget(label);
    auto* const toggle = new QCheckBox(QStringLiteral("Recall-Safe"));
    toggle->setFont(textFont(TextStyle::callout));
    toggle->setToolTip(recallSafeHelp);
    toggle->setMinimumHeight(theme::touchTarget);
    toggle->setAccessibleName(QStringLiteral("%1 Recall-Safe").arg(name));
    connect(toggle, &QCheckBox::clicked, this, [this, slot] { toggleRecallSafe(slot); });
    recallSafe[slot] = toggle;
    row->addWidget(toggle, 1);
    auto* const save = new ConsoleButton(QStringLiteral("Save…"), [this, slot] { askForPresetName(slot); });
    save->setAccessibleName(QStringLiteral("Save %1").arg(name));
    save->setFixedSize(saveButtonSize);
    row->addWidget(save);
    return row;
}

void SnapshotsView::subscribe() {
    const engine::EngineState& state = engine.state();
    const auto follow = [this](const auto& value, void (SnapshotsView::*display)()) {
        subscriptions.push_back(value.subscribe([this, display](const auto&) { (this->*display)(); }));
    };
    follow(state.snapshots, &SnapshotsView::showPosition);
    follow(state.currentSnapshotIndex, &SnapshotsView::showPosition);
    follow(state.midiLearnTargetIndex, &SnapshotsView::showLearning);
    follow(state.pluginSlotRecallSafe, &SnapshotsView::showRecallSafe);
}

std::function<void()> SnapshotsView::action(void (engine::MixerEngine::*operation)()) {
    return [this, operation] {
        list->commitRenaming();
        (engine.*operation)();
    };
}

void SnapshotsView::showPosition() {
    const std::size_t count = engine.state().snapshots.get().size();
    const auto& selected = engine.state().currentSnapshotIndex.get();
    position->setText(
        count > 0 && selected ? QStringLiteral("%1 / %2").arg(*selected + 1).arg(count) : noPosition
    );
    recall->setEnabled(selected.has_value());
    midi->setEnabled(selected.has_value());
    list->setVisible(count > 0);
    empty->setVisible(count == 0);
}

void SnapshotsView::showLearning() {
    const bool isLearning = engine.state().midiLearnTargetIndex.get().has_value();
    midi->setActive(isLearning);
    learning->setVisible(isLearning);
}

void SnapshotsView::showRecallSafe() {
    const std::vector<bool>& flags = engine.state().pluginSlotRecallSafe.get();
    for (std::size_t slot = 0; slot < insertRows; ++slot)
        recallSafe[slot]->setChecked(slot < flags.size() && flags[slot]);
}

void SnapshotsView::toggleLearning() {
    list->commitRenaming();
    if (engine.state().midiLearnTargetIndex.get())
        engine.cancelMIDILearn();
    else
        engine.beginMIDILearn();
}

void SnapshotsView::toggleRecallSafe(std::size_t slot) {
    const std::vector<bool>& flags = engine.state().pluginSlotRecallSafe.get();
    if (slot < flags.size()) engine.setRecallSafe(!flags[slot], static_cast<std::int64_t>(slot));
    showRecallSafe();
}

void SnapshotsView::askForPresetName(std::size_t slot) {
    const std::size_t number = slot + 1;
    const TextPrompt prompt{
        .title = QStringLiteral("Save Insert %1 (All Channels)").arg(number),
        .message = presetMessage.arg(number),
        .placeholder = QStringLiteral("Preset name"),
        .text = QStringLiteral("Insert %1").arg(number)};
    askForText(this, prompt, [this, slot](const QString& name) {
        engine.savePluginPresetOnAllChannels(name.toStdString(), slot);
    });
}

} // namespace orvane::ui
