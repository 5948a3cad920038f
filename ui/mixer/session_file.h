#pragma once

#include "engine/mixer_engine.h"
#include "engine/session/mixer_json_document.h"
#include "platform/result.h"
#include "ui/strip/installed_components.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

class QFileDialog;
class QWidget;

namespace orvane::ui {

class BusyNotice;
class ChannelArea;

/// A session's way into files and out of them: asks which file, reads and writes it in the background, and
/// knows what would be lost. Main thread.
class SessionFile final : public QObject {
  public:
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
    void saveTo(const QString& path, std::function<void(const platform::Result<platform::Done>&)> then);
    /// Asks for a file and loads it.
    void load();
    /// Loads a file, having asked first if that would throw away what has not been saved.
    void loadFrom(const QString& path);
    /// Gives the session to the engine, once the installed plugins are known if it has any; then calls
    /// `then`.
    void apply(const session::MixerDocumentData& document, std::function<void()> then);

    /// Whether the session is not as it was last saved, loaded or begun.
    [[nodiscard]] bool isUnsaved() const;
    /// Takes the session as it is now for saved.
    void setSaved();
    /// Says which file the session was opened from, if any.
    void setFile(std::optional<QString> path);

  private:
    void write(const QString& path, std::function<void(const platform::Result<platform::Done>&)> then);
    /// Some desktops' dialogs offer files of other computers.
    void refuseOtherPlaces(QFileDialog* dialog, const char* failure);
    void showBusy(const char* text);

    engine::MixerEngine& engine;
    InstalledComponents& components;
    QWidget& window;
    ChannelArea& channelArea;
    /// What the export dialog is to write.
    session::MixerJSONDocument exportDocument;
    session::MixerDocumentData saved;
    std::optional<QString> ownFile;
    /// There while something is under way.
    std::unique_ptr<BusyNotice> notice;
};

} // namespace orvane::ui
