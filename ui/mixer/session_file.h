#pragma once

#include "engine/mixer_engine.h"
#include "engine/session/mixer_json_document.h"
#include "platform/result.h"
#include "ui/strip/installed_components.h"

#include <QObject>

#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
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
    /// Writes the session to a file, which is its own from then on if it was written; then calls `then`.
    void saveTo(const std::filesystem::path& path, Report then);
    /// Asks for a file and loads it.
    void load();
    /// Loads a file, having asked first if that would throw away what has not been saved.
    void loadFrom(const std::filesystem::path& path);
    /// Gives the session to the engine, once the installed plugins are known if it has any; then calls
    /// `then`.
    void apply(const session::MixerDocumentData& document, Report then);

    /// Whether the session is not as it was last saved, loaded or begun.
    [[nodiscard]] bool isUnsaved() const;
    /// Takes the session as it is now for saved.
    void setSaved();
    /// Says which file the session was opened from, if any.
    void setFile(std::optional<std::filesystem::path> path);

  private:
    /// Runs `task` once nothing is under way any more.
    void whenIdle(std::function<void()> task);
    void begin(const char* text);
    void end();
    void runWaiting();
    void write(const std::filesystem::path& path, const session::MixerDocumentData& document, Report then);
    /// Some desktops' dialogs offer files of other computers.
    void refuseOtherPlaces(QFileDialog* dialog, const char* failure);

    engine::MixerEngine& engine;
    InstalledComponents& components;
    QWidget& window;
    ChannelArea& channelArea;
    /// What the export dialog is to write.
    session::MixerJSONDocument exportDocument;
    session::MixerDocumentData saved;
    std::optional<std::filesystem::path> ownFile;
    /// The channels of the own file that the mixer has no strips for: they stay in the file.
    std::vector<session::ChannelSettingsData> channelsBeyond;
    /// There while something is under way.
    std::unique_ptr<BusyNotice> notice;
    std::deque<std::function<void()>> waiting;
};

} // namespace orvane::ui
