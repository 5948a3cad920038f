#pragma once

#include "platform/base/result.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace orvane::platform::session_manager {

/// A request of a session manager to open a session.
struct SessionPlace {
    /// The session's path in the manager's folder, to which the program adds its suffix.
    std::filesystem::path path;
    /// The name for the program's audio clients.
    std::string clientID;
};

/// Why the program rejects a request; the numbers are the protocol's.
enum class ManagerRefusal : int { general = -1, noSessionOpen = -6, notNow = -8, badSession = -9 };

/// How long to wait for a session manager.
struct ManagerPatience {
    /// For the answer to the announcement, which managers send at once.
    std::chrono::milliseconds answer;
    /// For the request to open, counted from that answer; the manager may be starting a whole show.
    std::chrono::milliseconds open;
};

/// The program's side of the NSM protocol, by which session managers open, save and close the programs of a
/// show together. Messages from other addresses than the manager's are dropped; if the manager is on
/// loopback, the port is bound there. Made by the composition root before any audio client. Main thread; only
/// `connect` blocks.
class SessionManagerClient final {
  public:
    /// Announces the program to the manager at `url` (the value of NSM_URL), with its executable's name, and
    /// waits for the request to open. Fails if the manager refuses, does not answer or sends no such request
    /// within `patience`.
    static Result<std::unique_ptr<SessionManagerClient>>
    connect(const std::string& url, const std::string& executable, const ManagerPatience& patience);

    ~SessionManagerClient();
    SessionManagerClient(const SessionManagerClient&) = delete;
    SessionManagerClient& operator=(const SessionManagerClient&) = delete;

    /// The session to open.
    [[nodiscard]] const SessionPlace& session() const;

    /// Answers that the session is open.
    void confirmOpen();
    /// Answers that the session cannot be opened; later requests to save are refused.
    void refuseOpen(ManagerRefusal why, const std::string& sentence);

    /// Sets the handler for requests to save the open session; each requires an `answerSave`.
    void setOnSave(std::function<void()> save);
    /// Answers the request to save, after the session was written or failed to be.
    void answerSave(const Result<Done>& saved);

    /// Reports to the manager whether there are unsaved changes, if that has changed.
    void setDirty(bool isDirty);

    /// Processes pending messages of the manager; never blocks.
    void poll();

  private:
    class Connection;
    explicit SessionManagerClient(std::unique_ptr<Connection> established);

    std::unique_ptr<Connection> connection;
};

} // namespace orvane::platform::session_manager
