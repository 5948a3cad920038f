#include "ui/mixer/session_file.h"

#include "engine/session_files.h"
#include "platform/base/memory_shortage.h"
#include "ui/controls/busy_notice.h"
#include "ui/controls/confirmation.h"
#include "ui/mixer/channel_area.h"
#include "ui/mixer/missing_plugins.h"
#include "ui/mixer/session_names.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QtConcurrent>

#include <fmt/format.h>

#include <algorithm>
#include <new>
#include <span>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace orvane::ui {

namespace {

const QString savedFilter = QStringLiteral("ORVANE Session (*.orvane)");
const QString loadedFilter = QStringLiteral("ORVANE Session (*.orvane *.json)");
const QString exportName = QStringLiteral("ORVANE Settings");

const QString missingTitle = QStringLiteral("Plugins of this session are not installed.");
const QString missingText =
    QStringLiteral("These inserts pass the sound on unchanged. Install their plugins and load the session "
                   "again, or choose others.\n\n%1");

const Confirmation replaceQuestion{
    .title = QStringLiteral("Replace this session?"),
    .message =
        QStringLiteral("It has changed since it was last saved; loading another one throws the changes "
                       "away, its snapshots included."),
    .action = QStringLiteral("Load"),
    .alternative = QStringLiteral("Save First…")};

using engine::noMemoryToRead;
using engine::noMemoryToWrite;
using Written = platform::Result<platform::Done>;
using Read = platform::Result<SessionFile::Document>;

/// The session that was read, and the version of its file.
struct Stamped {
    std::optional<platform::FileStamp> stamp;
    Read session;
};

void ignoreOutcome(const Written& /*written*/) {}

Confirmation replaceFileQuestion(const QString& name) {
    return {
        .title = QStringLiteral("Replace this file?"),
        .message = QStringLiteral("\"%1\" is there already; saving replaces what is in it.")
                       .arg(QFileInfo(name).fileName()),
        .action = QStringLiteral("Replace")};
}

Read readDocument(const std::filesystem::path& path) {
    auto read = engine::readSession(path);
    if (!read) return read.error();
    return std::make_shared<const session::MixerDocumentData>(std::move(read).value());
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
      saved(mixerEngine) {}

SessionFile::~SessionFile() = default;

void SessionFile::save(std::function<void()> then) {
    const Document exportDocument = documentNow();
    auto* const dialog = new QFileDialog(&window, QStringLiteral("Save"), folder(), savedFilter);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->selectFile(ownFile.get() ? savedName(*ownFile.get()) : exportName);
    connect(
        dialog, &QFileDialog::fileSelected, this,
        [this, exportDocument, then = std::move(then)](const QString& chosen) {
            const QString name = withSessionSuffix(chosen);
            const Report report = [then](const Written& written) {
                if (written && then) then();
            };
            const auto write = [this, path = toPath(name), exportDocument, report] {
                whenIdle(
                    {[this, path, exportDocument, report] { writeNow(path, exportDocument, report); },
                     {noMemoryToWrite, report}}
                );
            };
            // The dialog has asked only about the name as it was chosen, without the suffix.
            if (name == chosen || !QFileInfo::exists(name)) return write();
            confirm(&window, replaceFileQuestion(name), write);
        }
    );
    refuseOtherPlaces(dialog, "Export failed: ");
    open(dialog);
}

bool SessionFile::saveInPlace() {
    if (!ownFile.get()) return false;
    const auto write = [this] {
        // An earlier task may have changed the session's own file.
        if (ownFile.get()) writeNow(*ownFile.get(), documentNow(), ignoreOutcome);
    };
    whenIdle({write, {noMemoryToWrite, ignoreOutcome}});
    return true;
}

void SessionFile::saveTo(const std::filesystem::path& path, const Report& then) {
    // Answers only once: the question whether to replace the file already counts as an answer.
    const Report once = [then, isAnswered = std::make_shared<bool>(false)](const Written& written) {
        if (!std::exchange(*isAnswered, true)) then(written);
    };
    whenIdle({[this, path, once] { writeNow(path, documentNow(), once); }, {noMemoryToWrite, once}});
}

void SessionFile::setFile(std::optional<std::filesystem::path> path) {
    ownStamp = path ? platform::stampOf(*path) : std::nullopt;
    ownFile.set(std::move(path));
}

void SessionFile::load() {
    auto* const dialog = new QFileDialog(&window, QStringLiteral("Load"), folder(), loadedFilter);
    dialog->setFileMode(QFileDialog::ExistingFile);
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& name) {
        loadFrom(toPath(name));
    });
    refuseOtherPlaces(dialog, "Import failed: ");
    open(dialog);
}

void SessionFile::loadFrom(const std::filesystem::path& path) {
    whenIdle({[this, path] { readNow(path); }, {noMemoryToRead, ignoreOutcome}});
}

void SessionFile::refuseOtherPlaces(QFileDialog* dialog, const char* failure) {
    connect(dialog, &QFileDialog::urlSelected, this, [this, failure](const QUrl& chosen) {
        if (chosen.isLocalFile()) return;
        channelArea.setFileErrorMessage(fmt::format(
            "{}\"{}\" is not a file on this computer.", failure, chosen.toDisplayString().toStdString()
        ));
    });
}

void SessionFile::leave(std::function<void()> then) {
    leaving = std::move(then);
    runWaiting();
}

void SessionFile::whenIdle(Task task) {
    waiting.push_back(std::move(task));
    runWaiting();
}

void SessionFile::begin(const char* text) {
    notice = std::make_unique<BusyNotice>(&window, QString::fromUtf8(text));
}

void SessionFile::end() {
    notice.reset();
    // The next task must run after the consequences of this one.
    QMetaObject::invokeMethod(
        this, [this] { runWaiting(); }, Qt::QueuedConnection
    );
}

void SessionFile::runWaiting() {
    while (!notice && !waiting.empty()) {
        const Task task = std::move(waiting.front());
        waiting.pop_front();
        attempt(task.run, task.shortage);
    }
    if (!notice && leaving) std::exchange(leaving, {})();
}

void SessionFile::attempt(const std::function<void()>& task, const Shortage& shortage) {
    try {
        task();
    } catch (const std::bad_alloc&) {
        giveUp(shortage);
    }
}

void SessionFile::giveUp(const Shortage& shortage) {
    platform::runUnlessOutOfMemory([&] { end(); });
    platform::runUnlessOutOfMemory([&] { conclude(platform::Error{shortage.sentence}, shortage.then); });
}

void SessionFile::conclude(const Written& outcome, const Report& then) {
    // Both are notified, even if memory runs out for one.
    platform::runUnlessOutOfMemory([&] {
        if (outcome) return channelArea.setFileErrorMessage(std::nullopt);
        leaving = nullptr;
        channelArea.setFileErrorMessage(outcome.error().description);
    });
    platform::runUnlessOutOfMemory([&] { then(outcome); });
}

template <class Work, class Use>
void SessionFile::inBackground(const char* text, Work work, Use use, const Shortage& shortage) {
    using Outcome = std::invoke_result_t<Work>;
    begin(text);
    // The program does not end while this runs.
    // cppcheck-suppress accessMoved ; moved here and accessed nowhere else
    QtConcurrent::run(std::move(work))
        .then(
            this,
            [this, use = std::move(use), shortage](const Outcome& outcome) {
                attempt(
                    [&] {
                        end();
                        use(outcome);
                    },
                    shortage
                );
            }
        )
        .onFailed(this, [this, shortage] { giveUp(shortage); });
}

void SessionFile::writeNow(const std::filesystem::path& path, const Document& document, const Report& then) {
    const bool isOwn = isOwnFile(path);
    const auto objection = engine::objectionToReplacing(path, isOwn ? ownStamp : std::nullopt);
    if (!objection) return replaceNow(path, document, then);
    askToReplace(path, document, *objection, then);
}

void SessionFile::askToReplace(
    const std::filesystem::path& path, const Document& document, const std::string& objection,
    const Report& then
) {
    conclude(
        platform::Error{"Export failed: " + objection + "; the session is not saved unless you replace it."},
        then
    );
    const Confirmation question{
        .title = QStringLiteral("Replace this file?"),
        .message = QString::fromStdString(objection + "; saving replaces what is in it."),
        .action = QStringLiteral("Replace")};
    const auto replace = [this, path, document, then] {
        channelArea.setFileErrorMessage(std::nullopt);
        whenIdle({[this, path, document, then] { replaceNow(path, document, then); }, {noMemoryToWrite, then}}
        );
    };
    confirm(&window, question, replace);
}

void SessionFile::replaceNow(
    const std::filesystem::path& path, const Document& document, const Report& then
) {
    const bool isOwn = isOwnFile(path);
    std::vector<session::ChannelSettingsData> kept;
    if (isOwn) kept = channelsBeyond;
    inBackground(
        "Saving the session…",
        [document, path, kept = std::move(kept)] { return engine::exportSession(*document, path, kept); },
        [this, path, document, isOwn, then](const Written& written) {
            if (written) {
                if (!isOwn) channelsBeyond.clear();
                // If memory runs out, the session counts as unsaved.
                platform::runUnlessOutOfMemory([this, &document] { saved.set(*document); });
                setFile(path);
            }
            conclude(written, then);
        },
        {noMemoryToWrite, then}
    );
}

void SessionFile::readNow(const std::filesystem::path& path) {
    inBackground(
        "Reading the session…",
        [path] {
            // The stamp comes first, so that a change during the reading is noticed.
            const auto stamp = platform::stampOf(path);
            return Stamped{stamp, readDocument(path)};
        },
        [this, path](const Stamped& read) {
            if (read.session)
                offer(path, read.stamp, read.session.value());
            else
                conclude(read.session.error(), ignoreOutcome);
        },
        {noMemoryToRead, ignoreOutcome}
    );
}

void SessionFile::offer(
    const std::filesystem::path& path, const std::optional<platform::FileStamp>& stamp,
    const Document& document
) {
    const auto replace = [this, path, stamp, document] {
        apply(document, [this, path, stamp](const Written& applied) {
            if (!applied) return;
            ownStamp = stamp;
            ownFile.set(path);
            channelArea.setFileErrorMessage(std::nullopt);
        });
    };
    if (!isUnsaved()) return replace();
    confirm(&window, replaceQuestion, replace, [this, replace] { save(replace); });
}

void SessionFile::apply(const Document& document, const Report& then) {
    const auto hand = [this, document, then] {
        end();
        auto beyond = engine::channelsBeyond(*document, engine.state().channelStrips.get().size());
        const auto loaded = engine.loadDocument(*document);
        if (loaded) {
            channelsBeyond = std::move(beyond);
            ownFile.set(std::nullopt);
            // If memory runs out here, the session counts as unsaved.
            platform::runUnlessOutOfMemory([this] { setSaved(); });
            platform::runUnlessOutOfMemory([this] { showMissingPlugins(); });
        }
        conclude(loaded, then);
    };
    const Shortage shortage{noMemoryToRead, then};
    const auto handOnceFound = [this, hand, shortage, needsPlugins = hasPlugins(*document)] {
        if (!needsPlugins) return hand();
        begin("Looking for the installed plugins…");
        components.whenFound([this, hand, shortage] { attempt(hand, shortage); });
    };
    whenIdle({handOnceFound, shortage});
}

void SessionFile::showMissingPlugins() {
    const QStringList missing = missingPlugins(engine);
    if (!missing.isEmpty()) showAlert(&window, missingTitle, missingText.arg(missing.join(QChar(u'\n'))));
}

bool SessionFile::isOwnFile(const std::filesystem::path& path) const {
    return ownFile.get() && isSameFile(*ownFile.get(), path);
}

QString SessionFile::folder() const {
    return ownFile.get() ? toName(ownFile.get()->parent_path()) : QString();
}

SessionFile::Document SessionFile::documentNow() const {
    return std::make_shared<const session::MixerDocumentData>(engine.makeDocumentData());
}

bool SessionFile::isUnsaved() const {
    return saved.isOutdated();
}

void SessionFile::setSaved() {
    saved.set(engine.makeDocumentData());
}

} // namespace orvane::ui
