#pragma once

#include "engine/engine_state.h"
#include "engine/services.h"
#include "platform/base/published.h"
#include "platform/base/result.h"
#include "platform/files/preferences.h"
#include "ui/mixer/presentation.h"
#include "ui/mixer/session_file.h"
#include "ui/windows/launch_options.h"
#include "ui/windows/mixer_root_view.h"
#include "ui/windows/recent_files.h"
#include "ui/windows/remembered_devices.h"
#include "ui/windows/window_presenter.h"

#include <QMainWindow>
#include <QMenu>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orvane::ui {

/// The application's main window with its menus. Asks for a channel count if none has been chosen, and shows
/// the mixer with that many channels otherwise. Main thread.
class ORVANEApp final : public QMainWindow {
  public:
    /// The services that the window uses; services and preferences must outlive it.
    struct Parts {
        engine::Services services;
        platform::Preferences& preferences;
        /// Called with the mixer of a new session before its audio runs, and with null when the session has
        /// ended.
        std::function<void(const engine::EngineState*)> onMixer = {};
    };

    /// `options` apply to the first session.
    ORVANEApp(Parts applicationParts, LaunchOptions options);
    /// Remembers the place of the window.
    ~ORVANEApp() override;

    /// Below 1 until a count is chosen.
    [[nodiscard]] std::int64_t channelCount() const { return channels; }
    /// Null while a channel count is being chosen.
    [[nodiscard]] MixerRootView* mixerRootView() const;

    /// Calls `then` once the first session is open or has failed to open; at once if that has happened
    /// already, or while a channel count is being chosen.
    void whenOpened(SessionFile::Report then);

    /// Writes the session to the file that it was opened from; logs an error if there is none.
    void saveInPlace();
    /// Writes the session to a file, then calls `then`; at once if there is no session.
    void saveTo(const std::filesystem::path& file, const SessionFile::Report& then);
    /// Whether the session has changed since it was last saved.
    [[nodiscard]] bool isUnsaved() const;

    /// Shows and logs errors, one sentence each.
    void showProblems(const std::vector<std::string>& problems);

  protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

  private:
    void addMenus();
    /// Sets up the new session with the options of the command line.
    void begin(MixerRootView& root);
    void showContent();
    /// The smallest content size on the window's screen.
    [[nodiscard]] QSize smallestContentHere() const;
    /// Discards the session and remembers the new channel count.
    void setChannelCount(std::int64_t count);
    /// Restores the presentation that the user chose last, and remembers later choices.
    void rememberPresentation(Presentation& presentation);
    /// Shows the session's file, and whether it has unsaved changes, in the title.
    void followFile(MixerRootView& root);
    void fillRecentMenu();
    void remember(std::string_view key, std::string_view value);
    void writeToSupport();
    /// Closes without asking.
    void leave();

    const Parts parts;
    LaunchOptions launchOptions;
    std::int64_t channels;
    std::optional<platform::Result<platform::Done>> opened;
    SessionFile::Report onOpened;
    AboutWindowPresenter about;
    HelpWindowPresenter help;
    platform::Subscription presentationSubscription;
    QMenu* sessionMenu = nullptr;
    QMenu* const recentMenu = new QMenu(QStringLiteral("Open Recent"), this);
    RecentFiles recentFiles{parts.preferences};
    std::unique_ptr<RememberedDevices> remembered;
    platform::Subscription toFile;
    std::unique_ptr<platform::MainThreadTimer> changesTimer;
    QMenu* stripMenu = nullptr;
    bool mayClose = false;
};

} // namespace orvane::ui
