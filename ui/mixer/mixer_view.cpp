#include "ui/mixer/mixer_view.h"

#include "engine/session_files.h"
#include "ui/controls/confirmation.h"
#include "ui/controls/divider.h"
#include "ui/mixer/channel_area.h"
#include "ui/mixer/master_section.h"
#include "ui/mixer/mixer_toolbar.h"
#include "ui/sheets/device_settings_view.h"
#include "ui/sheets/snapshots_view.h"

#include <QFileDialog>
#include <QLineEdit>
#include <QShortcut>
#include <QVBoxLayout>

#include <filesystem>
#include <utility>

namespace orvane::ui {

namespace {

const QString sessionFilter = QStringLiteral("ORVANE Session (*.orvane)");
const QString sessionSuffix = QStringLiteral("orvane");
const QString exportName = QStringLiteral("ORVANE Settings");

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

std::filesystem::path toPath(const QString& path) {
    return path.toStdString();
}

} // namespace

MixerView::MixerView(
    engine::MixerEngine& mixerEngine, std::function<void()> onReconfigureChannelCount, QWidget* parent
)
    : QWidget(parent),
      engine(mixerEngine),
      reconfigure(std::move(onReconfigureChannelCount)),
      components([&mixerEngine] { return mixerEngine.availableInsertComponents(); }),
      channelArea(new ChannelArea(mixerEngine, components)) {
    auto* const lines = new QVBoxLayout(this);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(0);
    lines->addWidget(makeToolbar());
    lines->addWidget(channelArea, 1);
    lines->addWidget(makeHorizontalDivider());
    lines->addWidget(new MasterSection(engine));
    addShortcuts();
    engine.refreshDevices();
}

// The strips go before the components that they know.
MixerView::~MixerView() {
    delete channelArea;
}

QWidget* MixerView::makeToolbar() {
    return new MixerToolbar(
        engine, {.clearOutputs = [this] { confirmClearOutputs(); },
                 .showSnapshots = [this] { openSheet(new SnapshotsView(engine, this)); },
                 .load = [this] { openImportDialog(); },
                 .save = [this] { openExportDialog(); },
                 .showDeviceSettings = [this] { openSheet(new DeviceSettingsView(engine, this)); },
                 .changeChannelCount = [this] { confirmChannelCount(); }}
    );
}

void MixerView::addShortcuts() {
    const auto add = [this](const QKeySequence& keys, auto action) {
        auto* const shortcut = new QShortcut(keys, this);
        connect(shortcut, &QShortcut::activated, this, action);
    };
    add(QKeySequence::Save, [this] { openExportDialog(); });
    add(QKeySequence::Open, [this] { openImportDialog(); });
    add(Qt::Key_PageDown, [this] { channelArea->turn(true); });
    add(Qt::Key_PageUp, [this] { channelArea->turn(false); });
}

void MixerView::confirmClearOutputs() {
    confirm(this, clearOutputsQuestion, [this] { engine.allOutputsOff(); });
}

void MixerView::confirmChannelCount() {
    confirm(this, channelCountQuestion, reconfigure);
}

void MixerView::openSheet(QDialog* sheet) {
    commitEditing();
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    sheet->open();
}

void MixerView::commitEditing() {
    if (auto* const field = qobject_cast<QLineEdit*>(focusWidget())) field->clearFocus();
}

void MixerView::openExportDialog() {
    commitEditing();
    exportDocument.data = engine.makeDocumentData();
    auto* const dialog = new QFileDialog(this, QStringLiteral("Save"), {}, sessionFilter);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(sessionSuffix);
    dialog->selectFile(exportName);
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& path) { exportTo(path); });
    openSheet(dialog);
}

void MixerView::openImportDialog() {
    auto* const dialog = new QFileDialog(this, QStringLiteral("Load"), {}, sessionFilter);
    dialog->setFileMode(QFileDialog::ExistingFile);
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& path) { importFrom(path); });
    openSheet(dialog);
}

void MixerView::exportTo(const QString& path) {
    const auto written = engine::exportSession(exportDocument.data, toPath(path));
    if (!written) channelArea->setFileErrorMessage(written.error().description);
}

void MixerView::importFrom(const QString& path) {
    auto session = engine::readSession(toPath(path));
    if (!session) return channelArea->setFileErrorMessage(session.error().description);
    engine.applyDocument(std::move(session).value());
    channelArea->setFileErrorMessage(std::nullopt);
}

} // namespace orvane::ui
