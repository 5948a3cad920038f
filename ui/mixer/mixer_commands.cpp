#include "ui/mixer/mixer_commands.h"

#include "ui/theme/symbols.h"

#include <QAction>

#include <cstdint>
#include <utility>

namespace orvane::ui {

namespace {

const QString devicesHelp =
    QStringLiteral("Choose the audio device (soundcard) and MIDI input source, and set the buffer size.");
const QString wantedHelp =
    QStringLiteral("\nNo audio device is selected yet: click here and choose one, then press Start.");

} // namespace

MixerCommands::MixerCommands(engine::MixerEngine& mixerEngine, const Actions& actions) : engine(mixerEngine) {
    addRouting(actions);
    addFiles(actions);
    addAudio(actions);
    addScenes();
    addClipboard();
    const engine::EngineState& state = engine.state();
    const auto follow = [this](const auto& value, void (MixerCommands::*display)()) {
        subscriptions.push_back(value.subscribe([this, display](const auto&) { (this->*display)(); }));
        (this->*display)();
    };
    follow(state.selectedDevice, &MixerCommands::showDevice);
    follow(state.isRunning, &MixerCommands::showRunning);
    follow(state.snapshots, &MixerCommands::showScenes);
    follow(state.nextSnapshotIndex, &MixerCommands::showScenes);
    follow(state.pluginClipboardArmState, &MixerCommands::showClipboard);
    follow(state.canUndoPaste, &MixerCommands::showClipboard);
}

void MixerCommands::addRouting(const Actions& actions) {
    add("one-to-one", QStringLiteral("1:1"), {},
        QStringLiteral("Reset every channel to a straight 1:1 patch (channel N -> input N -> output N)."),
        [this] { engine.resetRoutingOneToOne(); });
    add("clear-outputs", QStringLiteral("Clear Outputs"), {},
        QStringLiteral("Set every channel's output to None, leaving inputs untouched -- a quick way to kill "
                       "all outputs, e.g. if you suspect a feedback loop."),
        actions.clearOutputs);
    add("snapshots", QStringLiteral("Snapshots"), KeyCommand::showSnapshots,
        QStringLiteral("Store/recall full mixer states (scenes), with MIDI trigger + Learn."),
        actions.showSnapshots);
}

void MixerCommands::addFiles(const Actions& actions) {
    add("load", QStringLiteral("Load"), KeyCommand::load,
        QStringLiteral("Load a previously saved settings file."), actions.load);
    saveCommand = make(
        "save", QStringLiteral("Save"), KeyCommand::save,
        QStringLiteral("Save the session to its file; ask for a file if it has none."), actions.save
    );
    inMenu.push_back(saveCommand);
    add("save", QStringLiteral("Save As…"), KeyCommand::saveAs,
        QStringLiteral("Save/export the current session (routing, names, settings, and snapshots) as an "
                       ".orvane file."),
        actions.saveAs);
    commands.back()->setIconText(QStringLiteral("Save"));
}

void MixerCommands::addAudio(const Actions& actions) {
    add("devices", QStringLiteral("Audio / MIDI Devices"), KeyCommand::showDevices, devicesHelp,
        actions.showDeviceSettings);
    deviceCommand = commands.back();
    add("channels", QStringLiteral("%1 Channels").arg(engine.state().channelStrips.get().size()), {},
        QStringLiteral("Change how many channels this session has. Smaller sessions use less CPU -- see the "
                       "channel-count picker's explanation."),
        actions.changeChannelCount);
    add("start", QStringLiteral("Start"), KeyCommand::startStop, {}, [this] {
        if (engine.state().isRunning.get())
            engine.stop();
        else
            engine.start();
    });
    inMenu.push_back(make(
        "channels", QStringLiteral("Output…"), {},
        QStringLiteral("Options for mixes that loudspeakers play in the same room, and the limiter."),
        actions.showOutputOptions
    ));
}

void MixerCommands::addScenes() {
    sceneCommands = {
        make(
            "previous", QStringLiteral("Previous Scene"), KeyCommand::previousScene,
            QStringLiteral("Choose the scene before, to be recalled next (F6)."),
            [this] { engine.chooseEarlierSnapshot(); }
        ),
        make(
            "next", QStringLiteral("Next Scene"), KeyCommand::nextScene,
            QStringLiteral("Choose the scene after, to be recalled next (F7)."),
            [this] { engine.chooseLaterSnapshot(); }
        ),
        make(
            "snapshots", QStringLiteral("Recall Next Scene"), KeyCommand::recallScene,
            QStringLiteral("Recall the scene under NEXT (F8)."), [this] { engine.recallNextSnapshot(); }
        )};
    sceneCommands.back()->setIconText(QStringLiteral("Recall"));
    addSeparator();
    inMenu.insert(inMenu.end(), sceneCommands.begin(), sceneCommands.end());
}

void MixerCommands::addClipboard() {
    undoPaste = make(
        "undo", QStringLiteral("Undo Paste"), KeyCommand::undoPaste,
        QStringLiteral("Bring back what the last pasted plugin has replaced."), [this] { engine.undoPaste(); }
    );
    cancelArm = make(
        "clear-outputs", QStringLiteral("Cancel Copy/Paste"), KeyCommand::disarm,
        QStringLiteral("Disarm Copy or Paste."), [this] { engine.cancelClipboardArm(); }
    );
    // Esc closes the windows in front.
    cancelArm->setShortcutContext(Qt::WindowShortcut);
    addSeparator();
    inMenu.insert(inMenu.end(), {undoPaste, cancelArm});
}

void MixerCommands::addSeparator() {
    auto* const separator = new QAction(this);
    separator->setSeparator(true);
    inMenu.push_back(separator);
}

void MixerCommands::add(
    const char* icon, const QString& label, std::optional<KeyCommand> key, const QString& help,
    std::function<void()> action
) {
    commands.push_back(make(icon, label, key, help, std::move(action)));
    inMenu.push_back(commands.back());
}

QAction* MixerCommands::make(
    const char* icon, const QString& label, std::optional<KeyCommand> key, const QString& help,
    std::function<void()> action
) {
    auto* const command = new QAction(symbol(QString::fromLatin1(icon)), label, this);
    if (key) command->setShortcuts(keysOf(*key));
    // Also while an editor or the snapshots are in front.
    command->setShortcutContext(Qt::ApplicationShortcut);
    command->setAutoRepeat(false);
    command->setToolTip(help);
    connect(command, &QAction::triggered, this, std::move(action));
    return command;
}

void MixerCommands::showScenes() {
    const auto count = static_cast<std::int64_t>(engine.state().snapshots.get().size());
    const std::int64_t next = engine.state().nextSnapshotIndex.get().value_or(count);
    const auto& [earlier, later, recall] = sceneCommands;
    earlier->setEnabled(next > 0);
    later->setEnabled(next + 1 < count);
    recall->setEnabled(next < count);
}

void MixerCommands::showClipboard() {
    undoPaste->setEnabled(engine.state().canUndoPaste.get());
    cancelArm->setEnabled(
        engine.state().pluginClipboardArmState.get() != plugins::PluginClipboardArmState::none
    );
}

void MixerCommands::showDevice() {
    const bool isSelected = engine.state().selectedDevice.get().has_value();
    commands.front()->setEnabled(isSelected);
    startStop()->setEnabled(isSelected);
    // The toolbar accents it. Its buttons follow when the tooltip changes.
    deviceCommand->setProperty(wantedProperty, !isSelected);
    deviceCommand->setToolTip(isSelected ? devicesHelp : devicesHelp + wantedHelp);
    showRunning();
}

void MixerCommands::showRunning() {
    const bool isRunning = engine.state().isRunning.get();
    QAction* const command = startStop();
    command->setIcon(symbol(isRunning ? QStringLiteral("stop") : QStringLiteral("start")));
    command->setText(isRunning ? QStringLiteral("Stop") : QStringLiteral("Start"));
    command->setToolTip(
        !command->isEnabled() ? QStringLiteral("Select an audio device first.")
        : isRunning           ? QStringLiteral("Stop the audio engine.")
                              : QStringLiteral("Start the audio engine.")
    );
}

} // namespace orvane::ui
