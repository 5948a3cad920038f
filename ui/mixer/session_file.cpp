#include "ui/mixer/session_file.h"

#include "engine/session_files.h"
#include "ui/controls/busy_notice.h"
#include "ui/controls/confirmation.h"
#include "ui/mixer/channel_area.h"
#include "ui/mixer/session_names.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QtConcurrent>

#include <fmt/format.h>

#include <algorithm>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace orvane::ui {

namespace {

const QString savedFilter = QStringLiteral("ORVANE Session (*.orvane)");
const QString loadedFilter = QStringLiteral("ORVANE Session (*.orvane *.json)");
const QString exportName = QStringLiteral("ORVANE Settings");

const Confirmation replaceQuestion{
    .title = QStringLiteral("Replace this session?"),
    .message =
        QStringLiteral("It has changed since it was last saved; loading another one throws the changes "
                       "away, its snapshots included."),
    .action = QStringLiteral("Load"),
    .alternative = QStringLiteral("Save First…")};

using Written = platform::Result<platform::Done>;
using Read = platform::Result<session::MixerDocumentData>;

Confirmation replaceFileQuestion(const QString& name) {
    return {
        .title = QStringLiteral("Replace this file?"),
        .message = QStringLiteral("\"%1\" is there already; saving replaces what is in it.")
                       .arg(QFileInfo(name).fileName()),
        .action = QStringLiteral("Replace")};
}

bool hasPlugins(std::span<const session::ChannelSettingsData> channels) {
    return std::ranges::any_of(channels, [](const session::ChannelSettingsData& channel) {
        return std::ranges::any_of(channel.pluginSlots, [](const session::PluginSlot& slot) {
            return slot.component.has_value();
        });
    });
}

bool hasPlugins(const session::MixerDocumentData& document) {
    return hasPlugins(document.channels)
           || std::ranges::any_of(document.snapshots, [](const session::Snapshot& snapshot) {
                  return hasPlugins(snapshot.channels);
              });
}

void open(QFileDialog* dialog) {
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

} // namespace

SessionFile::SessionFile(
    engine::MixerEngine& mixerEngine, InstalledComponents& installedComponents, QWidget& view,
    ChannelArea& messages
)
    : engine(mixerEngine),
      components(installedComponents),
      window(view),
      channelArea(messages),
      saved(mixerEngine.makeDocumentData()) {}

SessionFile::~SessionFile() = default;

void SessionFile::save(std::function<void()> then) {
    exportDocument.data = engine.makeDocumentData();
    auto* const dialog = new QFileDialog(&window, QStringLiteral("Save"), {}, savedFilter);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->selectFile(exportName);
    connect(dialog, &QFileDialog::fileSelected, this, [this, then = std::move(then)](const QString& chosen) {
        const QString name = withSessionSuffix(chosen);
        const auto writeIt = [this, path = toPath(name), then] {
            whenIdle([this, path, then, document = exportDocument.data] {
                write(path, document, [then](const Written& written) {
                    if (written && then) then();
                });
            });
        };
        // The dialog has asked only about the name that was chosen.
        if (name == chosen || !QFileInfo::exists(name)) return writeIt();
        confirm(&window, replaceFileQuestion(name), writeIt);
    });
    refuseOtherPlaces(dialog, "Export failed: ");
    open(dialog);
}

bool SessionFile::saveInPlace() {
    if (!ownFile) return false;
    // What is under way may give it another one.
    whenIdle([this] {
        if (ownFile) write(*ownFile, engine.makeDocumentData(), [](const Written& /*written*/) {});
    });
    return true;
}

void SessionFile::saveTo(const std::filesystem::path& path, Report then) {
    whenIdle([this, path, then = std::move(then)] { write(path, engine.makeDocumentData(), then); });
}

void SessionFile::setFile(std::optional<std::filesystem::path> path) {
    ownFile = std::move(path);
}

void SessionFile::load() {
    auto* const dialog = new QFileDialog(&window, QStringLiteral("Load"), {}, loadedFilter);
    dialog->setFileMode(QFileDialog::ExistingFile);
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& name) {
        loadFrom(toPath(name));
    });
    refuseOtherPlaces(dialog, "Import failed: ");
    open(dialog);
}

void SessionFile::refuseOtherPlaces(QFileDialog* dialog, const char* failure) {
    connect(dialog, &QFileDialog::urlSelected, this, [this, failure](const QUrl& chosen) {
        if (chosen.isLocalFile()) return;
        channelArea.setFileErrorMessage(fmt::format(
            "{}\"{}\" is not a file on this computer.", failure, chosen.toDisplayString().toStdString()
        ));
    });
}

void SessionFile::whenIdle(std::function<void()> task) {
    waiting.push_back(std::move(task));
    runWaiting();
}

void SessionFile::begin(const char* text) {
    notice = std::make_unique<BusyNotice>(&window, QString::fromUtf8(text));
}

void SessionFile::end() {
    notice.reset();
    // What is done next comes after what the one that has just ended leads to.
    QMetaObject::invokeMethod(
        this, [this] { runWaiting(); }, Qt::QueuedConnection
    );
}

void SessionFile::runWaiting() {
    while (!notice && !waiting.empty()) {
        const auto task = std::move(waiting.front());
        waiting.pop_front();
        task();
    }
}

void SessionFile::write(
    const std::filesystem::path& path, const session::MixerDocumentData& document, Report then
) {
    begin("Saving the session…");
    const bool isOwn = ownFile && isSameFile(*ownFile, path);
    std::vector<session::ChannelSettingsData> kept;
    if (isOwn) kept = channelsBeyond;
    // The program does not end before the file is written.
    QtConcurrent::run([document, path, kept = std::move(kept)] {
        return engine::exportSession(document, path, kept);
    }).then(this, [this, path, document, isOwn, then = std::move(then)](const Written& written) {
        end();
        if (written) {
            saved = document;
            ownFile = path;
            if (!isOwn) channelsBeyond.clear();
        } else {
            channelArea.setFileErrorMessage(written.error().description);
        }
        then(written);
    });
}

void SessionFile::loadFrom(const std::filesystem::path& path) {
    whenIdle([this, path] {
        begin("Reading the session…");
        QtConcurrent::run([path] { return engine::readSession(path); }
        ).then(this, [this, path](const Read& session) {
            end();
            if (!session) return channelArea.setFileErrorMessage(session.error().description);
            const auto replace = [this, path, document = session.value()] {
                apply(document, [this, path](const Written& applied) {
                    if (!applied) return;
                    ownFile = path;
                    channelArea.setFileErrorMessage(std::nullopt);
                });
            };
            if (!isUnsaved()) return replace();
            confirm(&window, replaceQuestion, replace, [this, replace] { save(replace); });
        });
    });
}

void SessionFile::apply(const session::MixerDocumentData& document, Report then) {
    const auto hand = [this, document, then = std::move(then)] {
        end();
        const auto loaded = engine.loadDocument(document);
        if (loaded) {
            const std::size_t strips = engine.state().channelStrips.get().size();
            channelsBeyond = engine::channelsBeyond(document, strips);
            ownFile.reset();
            setSaved();
        } else {
            channelArea.setFileErrorMessage(loaded.error().description);
        }
        then(loaded);
    };
    whenIdle([this, hand, needsPlugins = hasPlugins(document)] {
        if (!needsPlugins) return hand();
        begin("Looking for the installed plugins…");
        components.whenFound(hand);
    });
}

bool SessionFile::isUnsaved() const {
    return engine.makeDocumentData() != saved;
}

void SessionFile::setSaved() {
    saved = engine.makeDocumentData();
}

} // namespace orvane::ui
