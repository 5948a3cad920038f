#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::platform::jack {

class JackClient;
class JackEvents;

/// Opens the process's JACK clients. libjack is shared by all of them: it takes one call at a time, and when
/// the first client is opened after a server has shut down it frees those of the old server, whoever still
/// holds them. So there is one of these, which closes the old ones first; everything that talks to a JACK
/// server is made with it and does not outlive it.
class JackClients final {
  public:
    /// `programName` is what others see as the name of its clients; libjack opens no two of the same name at
    /// the same time on one machine, not even on different servers. Silences libjack, which reports on
    /// standard error otherwise.
    explicit JackClients(std::string programName = "ORVANE");
    JackClients(const JackClients&) = delete;
    JackClients& operator=(const JackClients&) = delete;

    /// A client of the running server, null where none runs; never starts one. `role` is added to the
    /// program's name, and a number where that is taken. Posts to `events`, which outlive the client, when
    /// the server has shut down or has shut the client out. Any thread but libjack's own.
    /// After the server has shut out one client only, opening another ends the rest, who are told: it fails
    /// as long as one of them plays.
    std::unique_ptr<JackClient> open(std::string_view role, JackEvents& events);

    /// Whether the next `open` ends the clients that there are. Any thread but libjack's own.
    [[nodiscard]] bool areOutdated();

  private:
    friend class JackClient;

    [[nodiscard]] bool isOnePlaying() const;

    std::string name;
    std::mutex libraryMutex;
    std::vector<JackClient*> opened;
    std::atomic<bool> isServerGone = false;
};

} // namespace orvane::platform::jack
