#pragma once

#include "engine/engine_state.h"
#include "engine/services.h"
#include "platform/base/result.h"
#include "platform/files/preferences.h"
#include "ui/mixer/session_file.h"
#include "ui/windows/launch_options.h"
#include "ui/windows/mixer_root_view.h"
#include "ui/windows/window_presenter.h"

#include <QMainWindow>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace orvane::ui {

/// The application's main window with its menus: asks for a channel count where none has been chosen, and
/// shows the mixer of that many channels otherwise. Main thread.
class ORVANEApp final : public QMainWindow {
  public:
    /// What it works with; the services and preferences outlive it.
    struct Parts {
        engine::Services services;
        platform::Preferences& preferences;
        /// Told of the mixer that a session begins with, before its audio runs, and of null where it has
        /// ended.
        std::function<void(const engine::EngineState*)> onMixer = {};
    };

    /// `options` are those of the first session.
    ORVANEApp(Parts applicationParts, LaunchOptions options);
    /// Remembers where the window was.
    ~ORVANEApp() override;

    /// Below 1 while none is chosen.
    [[nodiscard]] std::int64_t channelCount() const { return channels; }
    /// Null while a channel count is being chosen.
    [[nodiscard]] MixerRootView* mixerRootView() const;

    /// Calls `then` once the session that the window was to begin with is open or could not be opened; at
    /// once where it is, or while a channel count is being chosen.
    void whenOpened(SessionFile::Report then);

    /// Writes the session to the file that it was opened from; the log says so where there is none.
    void saveInPlace();
    /// Writes the session to a file, then calls `then`; at once while there is no session to write.
    void saveTo(const std::filesystem::path& file, const SessionFile::Report& then);
    /// Whether there is a session that has changed since it was last saved.
    [[nodiscard]] bool isUnsaved() const;

    /// Says what has gone wrong, one sentence each.
    void showProblems(const std::vector<std::string>& problems);

  protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

  private:
    void addMenus();
    /// Begins the session that has just been made as the command line said.
    void begin(MixerRootView& root);
    void showContent();
    /// How small the content may become on the screen that the window is on.
    [[nodiscard]] QSize smallestContentHere() const;
    /// Throws the session away and remembers the new size.
    void setChannelCount(std::int64_t count);
    void remember(std::string_view key, std::string_view value);
    void writeToSupport();
    /// Closes without a further question.
    void leave();

    const Parts parts;
    LaunchOptions launchOptions;
    std::int64_t channels;
    std::optional<platform::Result<platform::Done>> opened;
    SessionFile::Report onOpened;
    AboutWindowPresenter about;
    HelpWindowPresenter help;
    QMenu* sessionMenu = nullptr;
    bool mayClose = false;
};

} // namespace orvane::ui
