#pragma once

#include "engine/mixer_engine.h"
#include "engine/session/mixer_document_data.h"
#include "platform/base/published.h"
#include "platform/base/result.h"
#include "platform/files/file_stamp.h"
#include "ui/mixer/saved_session.h"
#include "ui/strip/installed_components.h"

#include <QObject>

#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QFileDialog;
class QWidget;

namespace orvane::ui {

class BusyNotice;
class ChannelArea;

/// Loads and saves sessions: asks for the file, reads and writes one file at a time in the background while
/// the mixer stays usable, and tracks unsaved changes. Main thread.
class SessionFile final : public QObject {
  public:
    /// Receives the outcome of an operation.
    using Report = std::function<void(const platform::Result<platform::Done>&)>;
    /// A session in transit; shared because it is large.
    using Document = std::shared_ptr<const session::MixerDocumentData>;

    /// Dialogs open in front of `view`; `messages` shows errors. All arguments must outlive this object.
    SessionFile(
        engine::MixerEngine& mixerEngine, InstalledComponents& installedComponents, QWidget& view,
        ChannelArea& messages
    );
    ~SessionFile() override;

    /// Asks for a file and writes the session. Calls `then` only after it was written.
    void save(std::function<void()> then = {});
    /// Writes the session to the file that it was opened from or last saved to. Returns false if there is
    /// none.
    bool saveInPlace();
    /// Writes the session to a file, which becomes its own file on success. Then calls `then`, which receives
    /// an error also while the user is asked whether to replace the file.
    void saveTo(const std::filesystem::path& path, const Report& then);
    /// Asks for a file and loads it.
    void load();
    /// Loads a file; first asks if unsaved changes would be lost.
    void loadFrom(const std::filesystem::path& path);
    /// Loads the session into the engine, after the search for installed plugins if it has any. Then calls
    /// `then`.
    void apply(const Document& document, const Report& then);
    /// Calls `then` once all pending work is done. Does not call it if any of that fails, so that the user
    /// sees the error.
    void leave(std::function<void()> then);

    /// Whether the session differs from the one last saved, loaded or begun.
    [[nodiscard]] bool isUnsaved() const;
    /// Marks the current session as saved.
    void setSaved();
    /// The session's own file: the one that it was opened from or last saved to; absent if there is none.
    /// Published after every load and save.
    [[nodiscard]] const platform::Published<std::optional<std::filesystem::path>>& ownPath() const {
        return ownFile;
    }
    /// Sets the file that the session was opened from, if any.
    void setFile(std::optional<std::filesystem::path> path);

  private:
    /// The error sentence, and its receiver, if memory runs out.
    struct Shortage {
        const char* sentence;
        Report then;
    };
    struct Task {
        std::function<void()> run;
        Shortage shortage;
    };

    [[nodiscard]] Document documentNow() const;
    /// The initial folder of dialogs: that of the session's own file.
    [[nodiscard]] QString folder() const;
    [[nodiscard]] bool isOwnFile(const std::filesystem::path& path) const;
    void showMissingPlugins();
    /// Runs `task` once no other task is in progress.
    void whenIdle(Task task);
    void begin(const char* text);
    void end();
    void runWaiting();
    /// Runs `task`; reports `shortage` if memory runs out.
    void attempt(const std::function<void()>& task, const Shortage& shortage);
    /// Ends the current task and reports `shortage`.
    void giveUp(const Shortage& shortage);
    /// Reports an outcome to `then`; shows the error if it failed.
    void conclude(const platform::Result<platform::Done>& outcome, const Report& then);
    /// Runs `work` on another thread while showing a notice with `text`, then `use` with its result.
    template <class Work, class Use>
    void inBackground(const char* text, Work work, Use use, const Shortage& shortage);
    void writeNow(const std::filesystem::path& path, const Document& document, const Report& then);
    /// Writes without asking, even over an existing file.
    void replaceNow(const std::filesystem::path& path, const Document& document, const Report& then);
    /// Asks whether to replace a file despite `objection`.
    void askToReplace(
        const std::filesystem::path& path, const Document& document, const std::string& objection,
        const Report& then
    );
    void readNow(const std::filesystem::path& path);
    /// Loads the session that was read; first asks if unsaved changes would be lost.
    void offer(
        const std::filesystem::path& path, const std::optional<platform::FileStamp>& stamp,
        const Document& document
    );
    /// Rejects files on other computers, which the dialogs of some desktops offer.
    void refuseOtherPlaces(QFileDialog* dialog, const char* failure);

    engine::MixerEngine& engine;
    InstalledComponents& components;
    QWidget& window;
    ChannelArea& channelArea;
    SavedSession saved;
    platform::Published<std::optional<std::filesystem::path>> ownFile;
    /// The stamp of the own file when it was last read or written.
    std::optional<platform::FileStamp> ownStamp;
    /// The channels of the own file beyond the mixer's strips; they stay in the file.
    std::vector<session::ChannelSettingsData> channelsBeyond;
    /// Set while a task is in progress.
    std::unique_ptr<BusyNotice> notice;
    std::deque<Task> waiting;
    /// Called once all tasks are done.
    std::function<void()> leaving;
};

} // namespace orvane::ui
