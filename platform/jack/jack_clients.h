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

/// Opens the process's JACK clients. All of them share libjack, which takes one call at a time and, when the
/// first client is opened after a server has shut down, frees the old server's clients even if they are in
/// use. So there is a single JackClients, which closes the old clients first; every user of a JACK server is
/// made with it and must not outlive it.
class JackClients final {
  public:
    /// `programName`: the name of its clients, as other programs see it; libjack never opens two of the same
    /// name at once on a computer, not even on different servers. Silences libjack, which otherwise prints to
    /// standard error.
    explicit JackClients(std::string programName = "ORVANE");
    JackClients(const JackClients&) = delete;
    JackClients& operator=(const JackClients&) = delete;

    /// Opens a client of the running server; null if none runs; never starts one. The client's name is the
    /// program's with `role` and, if it is taken, a number. Posts to `events`, which must outlive the client,
    /// when the server has shut down or has shut the client out. Any thread except libjack's own. After the
    /// server has shut out a single client, opening another closes and notifies the rest; it fails as long as
    /// one of them plays.
    std::unique_ptr<JackClient> open(std::string_view role, JackEvents& events);

    /// Whether libjack is PipeWire's own, whose only servers are PipeWire's. Any thread.
    [[nodiscard]] static bool areOfPipeWire();

    /// Whether the next `open` closes the existing clients. Any thread except libjack's own.
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
