#pragma once

#include "platform/session_manager/session_manager_client.h"
#include "ui/windows/orvane_app.h"

#include <filesystem>
#include <memory>
#include <string>

namespace orvane::app {

/// The session that a session manager asks the program to open, and its file. Outlives the window. Main
/// thread.
class ManagedSession final {
  public:
    /// Joins the session manager that NSM_URL names. Null if NSM_URL names none, or if joining fails, which
    /// is printed. Waits for the manager for a few seconds at most.
    static std::unique_ptr<ManagedSession> join(const std::filesystem::path& program);

    explicit ManagedSession(std::unique_ptr<platform::session_manager::SessionManagerClient> joined);

    [[nodiscard]] const std::filesystem::path& file() const { return sessionFile; }
    /// The name for the program's audio clients.
    [[nodiscard]] const std::string& clientName() const { return client->session().clientID; }
    /// Whether the file exists; otherwise a new session begins.
    [[nodiscard]] bool isStored() const;

    /// Reports to the manager that its session could not be opened. The file is not written after that.
    void refuse(const std::string& sentence);
    /// Reports to the manager when `window` has opened the session, unless it was refused, and saves it when
    /// the manager asks. `window` must not be destroyed before the last `poll`.
    void serve(ui::ORVANEApp& window);
    /// Reports to the manager whether there are changes to save.
    void reportChanges(const ui::ORVANEApp& window);
    /// Handles the manager's requests; never waits.
    void poll() { client->poll(); }

  private:
    std::unique_ptr<platform::session_manager::SessionManagerClient> client;
    std::filesystem::path sessionFile;
    bool isRefused = false;
};

} // namespace orvane::app
