#pragma once

#include "engine/mixer_engine.h"
#include "ui/mixer/mixer_commands.h"
#include "ui/mixer/presentation.h"
#include "ui/mixer/session_file.h"
#include "ui/mixer/strip_keys.h"
#include "ui/strip/installed_components.h"

#include <QDialog>
#include <QPointer>
#include <QWidget>

#include <functional>

class QAction;

namespace orvane::ui {

class ChannelArea;
class MasterSection;
class MixerToolbar;

/// The content of the main window during a session: commands, strips, master section. Main thread.
class MixerView final : public QWidget {
  public:
    /// Refreshes the engine's devices. `mixerEngine` must outlive the view. `onReconfigureChannelCount` is
    /// called when the user requests another channel count.
    MixerView(
        engine::MixerEngine& mixerEngine, std::function<void()> onReconfigureChannelCount,
        QWidget* parent = nullptr
    );
    ~MixerView() override;

    [[nodiscard]] const MixerCommands& commands() const { return sessionCommands; }
    [[nodiscard]] Presentation& presentation() { return mixerPresentation; }
    /// The command that changes between Setup and Mix.
    [[nodiscard]] QAction* presentationCommand() const { return togglePresentation; }
    [[nodiscard]] const StripKeys& stripKeys() const { return keys; }
    [[nodiscard]] SessionFile& sessionFile() { return file; }
    /// Commits pending edits and asks where to write the session. Calls `then` only after it was written.
    void save(std::function<void()> then = {});
    /// Commits pending edits and writes the session to its file; asks for a file if it has none.
    void saveInPlace();
    /// Commits a name or a value that is being typed.
    void commitEditing();

  protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void addShortcuts();
    void confirmClearOutputs();
    void confirmChannelCount();
    void showSnapshots();
    void showOutputOptions();
    /// Shows a sheet that leaves the mixer usable, or brings it to the front.
    void showBeside(QDialog* sheet);
    void openSheet(QDialog* sheet);

    engine::MixerEngine& engine;
    const std::function<void()> reconfigure;
    InstalledComponents components;
    Presentation mixerPresentation;
    QAction* const togglePresentation;
    MixerToolbar* toolbar = nullptr;
    ChannelArea* const channelArea;
    MasterSection* const masterSection;
    platform::Subscription presentationSubscription;
    QPointer<QDialog> snapshots;
    QPointer<QDialog> outputOptions;
    StripKeys keys;
    SessionFile file;
    MixerCommands sessionCommands;
};

} // namespace orvane::ui
