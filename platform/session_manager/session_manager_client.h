#pragma once

#include "platform/base/result.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace orvane::platform::session_manager {

/// What a session manager asks a program to open.
struct SessionPlace {
    /// The session's place in the manager's folder, to which the program adds its suffix.
    std::filesystem::path path;
    /// The name that the program's audio clients are to have.
    std::string clientID;
};

/// Why a program does not do what the manager asks, as the protocol numbers it.
enum class ManagerRefusal : int { general = -1, noSessionOpen = -6, notNow = -8, badSession = -9 };

/// How long a session manager is waited for.
struct ManagerPatience {
    /// For its answer to the announcement, which managers give at once.
    std::chrono::milliseconds answer;
    /// For what is to be opened, from the answer on; it may be starting a whole show.
    std::chrono::milliseconds open;
};

/// The program's side of the NSM protocol, which session managers speak to open, save and close the programs
/// of a show together. Messages of other addresses than the manager's are dropped, and a manager on this
/// machine's loopback is heard there only. Made by the composition root before any audio client. Main thread;
/// only `connect` waits.
class SessionManagerClient final {
  public:
    /// Announces the program to the manager at `url` (NSM_URL's value), under the name it was called by, and
    /// waits until it is told what to open. Fails where the manager refuses, does not answer or says nothing
    /// to open within `patience`.
    static Result<std::unique_ptr<SessionManagerClient>>
    connect(const std::string& url, const std::string& executable, const ManagerPatience& patience);

    ~SessionManagerClient();
    SessionManagerClient(const SessionManagerClient&) = delete;
    SessionManagerClient& operator=(const SessionManagerClient&) = delete;

    /// What is to be opened.
    [[nodiscard]] const SessionPlace& session() const;

    /// Answers that the session is open.
    void confirmOpen();
    /// Answers that the session cannot be opened; requests to save are refused from then on.
    void refuseOpen(ManagerRefusal why, const std::string& sentence);

    /// Called when the manager asks to save the session that is open; `answerSave` is owed then.
    void setOnSave(std::function<void()> save);
    /// Answers the request to save, once the session is in its file or could not be written.
    void answerSave(const Result<Done>& saved);

    /// Tells the manager whether there are changes to save, where that is not what it knows already.
    void setDirty(bool isDirty);

    /// Serves what the manager has sent meanwhile; never waits.
    void poll();

  private:
    class Connection;
    explicit SessionManagerClient(std::unique_ptr<Connection> established);

    std::unique_ptr<Connection> connection;
};

} // namespace orvane::platform::session_manager
