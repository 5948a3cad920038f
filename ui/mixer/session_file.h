#pragma once

#include "engine/mixer_engine.h"
#include "engine/session/mixer_document_data.h"
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

/// A session's way into files and out of them: asks which file, reads and writes one at a time in the
/// background while the mixer stays in reach, and knows what would be lost. Main thread.
class SessionFile final : public QObject {
  public:
    /// What is told of something that was done, or why it could not be.
    using Report = std::function<void(const platform::Result<platform::Done>&)>;
    /// A session on its way; large, and so never copied.
    using Document = std::shared_ptr<const session::MixerDocumentData>;

    /// `view` is what dialogs are shown in front of, `messages` says what has gone wrong; all outlive this.
    SessionFile(
        engine::MixerEngine& mixerEngine, InstalledComponents& installedComponents, QWidget& view,
        ChannelArea& messages
    );
    ~SessionFile() override;

    /// Asks for a file and writes the session; then calls `then`, but only if it was written.
    void save(std::function<void()> then = {});
    /// Writes the session to the file that it was opened from or last saved to; false where there is none.
    bool saveInPlace();
    /// Writes the session to a file, which is its own from then on if it was written; then calls `then`, with
    /// an error also while the user is asked whether to replace it.
    void saveTo(const std::filesystem::path& path, const Report& then);
    /// Asks for a file and loads it.
    void load();
    /// Loads a file, having asked first if that would throw away what has not been saved.
    void loadFrom(const std::filesystem::path& path);
    /// Gives the session to the engine, once the installed plugins are known if it has any; then calls
    /// `then`.
    void apply(const Document& document, const Report& then);
    /// Calls `then` once nothing is under way any more, but not where something of that fails: whoever wants
    /// to leave is to see it.
    void leave(std::function<void()> then);

    /// Whether the session is not as it was last saved, loaded or begun.
    [[nodiscard]] bool isUnsaved() const;
    /// Takes the session as it is now for saved.
    void setSaved();
    /// Says which file the session was opened from, if any.
    void setFile(std::optional<std::filesystem::path> path);

  private:
    /// What is said, and to whom, where there is no memory for something.
    struct Shortage {
        const char* sentence;
        Report then;
    };
    struct Task {
        std::function<void()> run;
        Shortage shortage;
    };

    [[nodiscard]] Document documentNow() const;
    /// Where dialogs begin: beside the session's own file.
    [[nodiscard]] QString folder() const;
    void showMissingPlugins();
    /// Runs `task` once nothing is under way any more.
    void whenIdle(Task task);
    void begin(const char* text);
    void end();
    void runWaiting();
    /// Runs `task`, or gives it up where it finds no memory.
    void attempt(const std::function<void()>& task, const Shortage& shortage);
    /// Ends what is under way, and says why.
    void giveUp(const Shortage& shortage);
    /// Tells how something ended, and shows why it failed.
    void conclude(const platform::Result<platform::Done>& outcome, const Report& then);
    /// Does `work` on another thread while a notice says so, then `use` with what it gave.
    template <class Work, class Use>
    void inBackground(const char* text, Work work, Use use, const Shortage& shortage);
    void writeNow(const std::filesystem::path& path, const Document& document, const Report& then);
    /// The same over whatever is there.
    void replaceNow(const std::filesystem::path& path, const Document& document, const Report& then);
    /// Asks whether to replace a file that speaks against it.
    void askToReplace(
        const std::filesystem::path& path, const Document& document, const std::string& objection,
        const Report& then
    );
    void readNow(const std::filesystem::path& path);
    /// Loads what was read, having asked first if that would throw away what has not been saved.
    void offer(
        const std::filesystem::path& path, const std::optional<platform::FileStamp>& stamp,
        const Document& document
    );
    /// Some desktops' dialogs offer files of other computers.
    void refuseOtherPlaces(QFileDialog* dialog, const char* failure);

    engine::MixerEngine& engine;
    InstalledComponents& components;
    QWidget& window;
    ChannelArea& channelArea;
    SavedSession saved;
    std::optional<std::filesystem::path> ownFile;
    /// The own file as it was read or written last.
    std::optional<platform::FileStamp> ownStamp;
    /// The channels of the own file that the mixer has no strips for: they stay in the file.
    std::vector<session::ChannelSettingsData> channelsBeyond;
    /// There while something is under way.
    std::unique_ptr<BusyNotice> notice;
    std::deque<Task> waiting;
    /// What follows once all that is done.
    std::function<void()> leaving;
};

} // namespace orvane::ui
