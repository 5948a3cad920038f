#include "ui/mixer/mixer_view.h"

#include "ui/controls/confirmation.h"
#include "ui/controls/divider.h"
#include "ui/keys.h"
#include "ui/mixer/audio_notice.h"
#include "ui/mixer/channel_area.h"
#include "ui/mixer/master_section.h"
#include "ui/mixer/mixer_toolbar.h"
#include "ui/mixer/session_names.h"
#include "ui/sheets/device_settings_view.h"
#include "ui/sheets/output_options_view.h"
#include "ui/sheets/snapshots_view.h"

#include <QAction>
#include <QDragEnterEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QShortcut>
#include <QVBoxLayout>

#include <filesystem>
#include <initializer_list>
#include <optional>
#include <utility>

namespace orvane::ui {

namespace {

const Confirmation clearOutputsQuestion{
    .title = QStringLiteral("Clear every channel's output?"),
    .message =
        QStringLiteral("This silences every channel immediately by setting its output to None -- inputs and "
                       "every other setting are untouched, but you'll need to re-patch outputs (e.g. "
                       "\"1:1\", or manually) to hear anything again."),
    .action = QStringLiteral("Clear Outputs")};
const Confirmation channelCountQuestion{
    .title = QStringLiteral("Change channel count?"),
    .message =
        QStringLiteral("This starts a fresh session at the new size. Save/export first if you want to keep "
                       "this session's routing and settings -- a saved file loads back in at any channel "
                       "count."),
    .action = QStringLiteral("Change Channel Count")};

const QString showMixText = QStringLiteral("Show Mix");
const QString showSetupText = QStringLiteral("Show Setup");

/// Returns the session file that is dragged; absent if anything else is.
std::optional<std::filesystem::path> draggedSession(const QMimeData& dragged) {
    const QList<QUrl> files = dragged.urls();
    if (files.size() != 1 || !files.front().isLocalFile()) return std::nullopt;
    const QString path = files.front().toLocalFile();
    if (!isSessionName(path)) return std::nullopt;
    return toPath(path);
}

} // namespace

MixerView::MixerView(
    engine::MixerEngine& mixerEngine, std::function<void()> onReconfigureChannelCount, QWidget* parent
)
    : QWidget(parent),
      engine(mixerEngine),
      reconfigure(std::move(onReconfigureChannelCount)),
      components([&mixerEngine] { return mixerEngine.availableInsertComponents(); }),
      togglePresentation(new QAction(showMixText, this)),
      channelArea(new ChannelArea(mixerEngine, components, mixerPresentation)),
      masterSection(new MasterSection(mixerEngine, [this] { showOutputOptions(); })),
      keys(mixerEngine, *channelArea),
      file(mixerEngine, components, *this, *channelArea),
      sessionCommands(
          mixerEngine, {.clearOutputs = [this] { confirmClearOutputs(); },
                        .showSnapshots = [this] { showSnapshots(); },
                        .load = [this] { file.load(); },
                        .save = [this] { saveInPlace(); },
                        .saveAs = [this] { save(); },
                        .showDeviceSettings = [this] { openSheet(new DeviceSettingsView(engine, this)); },
                        .showOutputOptions = [this] { showOutputOptions(); },
                        .changeChannelCount = [this] { confirmChannelCount(); }}
      ) {
    auto* const lines = new QVBoxLayout(this);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(0);
    toolbar = new MixerToolbar(sessionCommands);
    lines->addWidget(toolbar);
    lines->addWidget(new AudioNotice(engine, *sessionCommands.devices()));
    lines->addWidget(channelArea, 1);
    lines->addWidget(makeHorizontalDivider());
    lines->addWidget(masterSection);
    togglePresentation->setShortcuts(keysOf(KeyCommand::presentation));
    togglePresentation->setAutoRepeat(false);
    connect(togglePresentation, &QAction::triggered, this, [this] { mixerPresentation.toggle(); });
    presentationSubscription = mixerPresentation.shown().subscribe([this](StripPresentation now) {
        masterSection->setPresentation(now);
        togglePresentation->setText(now == StripPresentation::mix ? showSetupText : showMixText);
    });
    addShortcuts();
    setAcceptDrops(true);
    engine.refreshDevices();
}

// The strips use the components, so they are destroyed first.
MixerView::~MixerView() {
    delete channelArea;
}

void MixerView::addShortcuts() {
    for (QAction* command : sessionCommands.menu())
        addAction(command);
    const auto add = [this](KeyCommand command, auto action) {
        auto* const shortcut = new QShortcut(this);
        shortcut->setKeys(keysOf(command));
        connect(shortcut, &QShortcut::activated, this, action);
    };
    add(KeyCommand::nextStrips, [this] { channelArea->turn(true); });
    add(KeyCommand::previousStrips, [this] { channelArea->turn(false); });
}

void MixerView::resizeEvent(QResizeEvent*) {
    mixerPresentation.setSetupFits(
        height() >= toolbar->sizeHint().height() + channelArea->heightForSetup()
                        + masterSection->heightForSetup(width())
    );
}

void MixerView::save(std::function<void()> then) {
    commitEditing();
    file.save(std::move(then));
}

void MixerView::saveInPlace() {
    commitEditing();
    if (!file.saveInPlace()) file.save();
}

void MixerView::dragEnterEvent(QDragEnterEvent* event) {
    if (draggedSession(*event->mimeData())) event->acceptProposedAction();
}

void MixerView::dropEvent(QDropEvent* event) {
    const auto path = draggedSession(*event->mimeData());
    if (!path) return;
    event->acceptProposedAction();
    commitEditing();
    file.loadFrom(*path);
}

void MixerView::confirmClearOutputs() {
    confirm(this, clearOutputsQuestion, [this] { engine.allOutputsOff(); });
}

void MixerView::confirmChannelCount() {
    confirm(this, channelCountQuestion, [this] { file.leave(reconfigure); });
}

void MixerView::showSnapshots() {
    if (!snapshots) snapshots = new SnapshotsView(engine, this);
    showBeside(snapshots);
}

void MixerView::showOutputOptions() {
    if (!outputOptions) outputOptions = new OutputOptionsView(engine, this);
    showBeside(outputOptions);
}

void MixerView::showBeside(QDialog* sheet) {
    commitEditing();
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    // The commands, the first strips and the master meter stay visible.
    if (!sheet->isVisible()) sheet->move(channelArea->mapToGlobal(QPoint(width() - sheet->width(), 0)));
    sheet->show();
    sheet->raise();
    sheet->activateWindow();
}

void MixerView::openSheet(QDialog* sheet) {
    commitEditing();
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    sheet->open();
}

void MixerView::commitEditing() {
    for (const QWidget* window : std::initializer_list<const QWidget*>{this, snapshots, outputOptions})
        if (auto* const field = window ? qobject_cast<QLineEdit*>(window->focusWidget()) : nullptr)
            field->clearFocus();
}

} // namespace orvane::ui
