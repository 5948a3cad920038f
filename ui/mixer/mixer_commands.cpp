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

MixerCommands::MixerCommands(engine::MixerEngine& mixerEngine, Actions actions) : engine(mixerEngine) {
    const auto add = [this](
                         const char* icon, const QString& label, const QKeySequence& keys,
                         const QString& help, std::function<void()> action
                     ) { commands.push_back(make(icon, label, keys, help, std::move(action))); };
    add("one-to-one", QStringLiteral("1:1"), {},
        QStringLiteral("Reset every channel to a straight 1:1 patch (channel N -> input N -> output N)."),
        [this] { engine.resetRoutingOneToOne(); });
    add("clear-outputs", QStringLiteral("Clear Outputs"), {},
        QStringLiteral("Set every channel's output to None, leaving inputs untouched -- a quick way to kill "
                       "all outputs, e.g. if you suspect a feedback loop."),
        std::move(actions.clearOutputs));
    add("snapshots", QStringLiteral("Snapshots"), Qt::CTRL | Qt::Key_L,
        QStringLiteral("Store/recall full mixer states (scenes), with MIDI trigger + Learn."),
        std::move(actions.showSnapshots));
    add("load", QStringLiteral("Load"), QKeySequence::Open,
        QStringLiteral("Load a previously saved settings file."), std::move(actions.load));
    add("save", QStringLiteral("Save"), QKeySequence::Save,
        QStringLiteral("Save/export the current session (routing, names, settings, and snapshots) as an "
                       ".orvane file."),
        std::move(actions.save));
    add("devices", QStringLiteral("Audio / MIDI Devices"), Qt::CTRL | Qt::Key_Comma, devicesHelp,
        std::move(actions.showDeviceSettings));
    deviceCommand = commands.back();
    add("channels", QStringLiteral("%1 Channels").arg(engine.state().channelStrips.get().size()), {},
        QStringLiteral("Change how many channels this session has. Smaller sessions use less CPU -- see the "
                       "channel-count picker's explanation."),
        std::move(actions.changeChannelCount));
    add("start", QStringLiteral("Start"), Qt::CTRL | Qt::Key_Return, {}, [this] {
        if (engine.state().isRunning.get())
            engine.stop();
        else
            engine.start();
    });

    sceneCommands = {
        make(
            "previous", QStringLiteral("Previous Scene"), Qt::Key_F6,
            QStringLiteral("Choose the scene before, to be recalled next (F6)."),
            [this] { engine.chooseEarlierSnapshot(); }
        ),
        make(
            "next", QStringLiteral("Next Scene"), Qt::Key_F7,
            QStringLiteral("Choose the scene after, to be recalled next (F7)."),
            [this] { engine.chooseLaterSnapshot(); }
        ),
        make(
            "snapshots", QStringLiteral("Recall Next Scene"), Qt::Key_F8,
            QStringLiteral("Recall the scene under NEXT (F8)."), [this] { engine.recallNextSnapshot(); }
        )};
    sceneCommands.back()->setIconText(QStringLiteral("Recall"));

    subscriptions.push_back(engine.state().selectedDevice.subscribe([this](const auto&) { showDevice(); }));
    subscriptions.push_back(engine.state().isRunning.subscribe([this](bool) { showRunning(); }));
    subscriptions.push_back(engine.state().snapshots.subscribe([this](const auto&) { showScenes(); }));
    subscriptions.push_back(engine.state().nextSnapshotIndex.subscribe([this](const auto&) { showScenes(); })
    );
    showDevice();
    showScenes();
}

QAction* MixerCommands::make(
    const char* icon, const QString& label, const QKeySequence& keys, const QString& help,
    std::function<void()> action
) {
    auto* const command = new QAction(symbol(QString::fromLatin1(icon)), label, this);
    command->setShortcut(keys);
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
