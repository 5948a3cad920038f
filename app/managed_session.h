#pragma once

#include "platform/session_manager/session_manager_client.h"
#include "ui/windows/orvane_app.h"

#include <filesystem>
#include <memory>
#include <string>

namespace orvane::app {

/// The session that a session manager has the program open, as its file. Outlives the window. Main thread.
class ManagedSession final {
  public:
    /// Asks the manager that NSM_URL names what to open. Null where none is named, or where it cannot be
    /// joined, which is printed. Waits for the manager, at most for some seconds.
    static std::unique_ptr<ManagedSession> join(const std::filesystem::path& program);

    explicit ManagedSession(std::unique_ptr<platform::session_manager::SessionManagerClient> joined);

    [[nodiscard]] const std::filesystem::path& file() const { return sessionFile; }
    /// What the program's audio clients are to be called.
    [[nodiscard]] const std::string& clientName() const { return client->session().clientID; }
    /// Whether there is a file already; otherwise a new session is to begin.
    [[nodiscard]] bool isStored() const;

    /// Tells the manager that its session could not be opened; its file is not written then.
    void refuse(const std::string& sentence);
    /// Tells the manager when `window` has the session open, unless it has been refused, and has it saved
    /// when the manager asks; the window stays until the last `poll`.
    void serve(ui::ORVANEApp& window);
    /// Tells the manager whether there are changes to save.
    void tellChanges(const ui::ORVANEApp& window);
    /// Serves what the manager asks; never waits.
    void poll() { client->poll(); }

  private:
    std::unique_ptr<platform::session_manager::SessionManagerClient> client;
    std::filesystem::path sessionFile;
    bool isRefused = false;
};

} // namespace orvane::app
