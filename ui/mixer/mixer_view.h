#pragma once

#include "engine/mixer_engine.h"
#include "ui/mixer/mixer_commands.h"
#include "ui/mixer/session_file.h"
#include "ui/strip/installed_components.h"

#include <QWidget>

#include <functional>

class QDialog;

namespace orvane::ui {

class ChannelArea;

/// The content of the main window while a session is open: commands, strips, master section. Main thread.
class MixerView final : public QWidget {
  public:
    /// Has the engine look for devices. `mixerEngine` outlives the view. `onReconfigureChannelCount` asks for
    /// another channel count.
    MixerView(
        engine::MixerEngine& mixerEngine, std::function<void()> onReconfigureChannelCount,
        QWidget* parent = nullptr
    );
    ~MixerView() override;

    [[nodiscard]] const MixerCommands& commands() const { return sessionCommands; }
    [[nodiscard]] SessionFile& sessionFile() { return file; }
    /// Takes over what is being typed and asks where to write the session; then calls `then`, but only if it
    /// was written.
    void save(std::function<void()> then = {});
    /// Takes over a name or a value that is being typed.
    void commitEditing();

  protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    void addShortcuts();
    void confirmClearOutputs();
    void confirmChannelCount();
    void openSheet(QDialog* sheet);

    engine::MixerEngine& engine;
    const std::function<void()> reconfigure;
    InstalledComponents components;
    ChannelArea* const channelArea;
    SessionFile file;
    MixerCommands sessionCommands;
};

} // namespace orvane::ui
