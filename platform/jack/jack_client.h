#pragma once

#include "platform/jack/jack_clients.h"
#include "platform/jack/jack_events.h"
#include "platform/jack/jack_library_call.h"

#include <jack/jack.h>
#include <jack/uuid.h>

#include <atomic>
#include <string>

namespace orvane::platform::jack {

/// A client of a JACK server; the destructor closes it. Only for the sources of classes made with a
/// JackClients: other headers hide libjack. Any thread except libjack's own.
class JackClient final {
  public:
    ~JackClient();
    JackClient(const JackClient&) = delete;
    JackClient& operator=(const JackClient&) = delete;

    /// Passes libjack's handle to `call`, which may call libjack; returns false if the server is gone.
    template <class Call>
    bool use(Call&& call) {
        const JackLibraryCall libraryCall(clients.libraryMutex);
        if (handle == nullptr || isGone()) return false;
        call(handle);
        if (libraryCall.isBrokenOff()) loseServer();
        return !isGone();
    }

    /// Sets the name that connection programs show for the client or one of its ports, until the client
    /// closes. Does nothing unless the server is PipeWire: jackd keeps these names in one store, locked by
    /// all servers and clients of a user, and a program that is killed while it holds the lock, or closes
    /// with many names set, blocks the server permanently. Only within a call of `use`.
    void setPrettyName(jack_uuid_t subject, const std::string& prettyName);

    /// Removes the client from the server's cycles, even if the server is gone: no process callback is
    /// running when it returns, and none follows.
    void deactivate();

    /// Leaves the client to a process callback that does not return: libjack is no longer called with it, and
    /// it must never be freed.
    void abandon();

    /// Marks the client as audible, so that it is not closed for the sake of another client.
    void setPlaying(bool playing) { isPlaying.store(playing); }

    /// Whether the server has shut down, has shut the client out or has not answered it; remains true.
    [[nodiscard]] bool isGone() const noexcept { return gone.load(); }

  private:
    friend class JackClients;

    JackClient(JackClients& owner, JackEvents& clientEvents);
    static void markGone(void* self);
    void loseServer();
    void close();

    JackClients& clients;
    JackEvents& events;
    jack_client_t* handle = nullptr;
    std::atomic<bool> gone = false;
    std::atomic<bool> isPlaying = false;
};

} // namespace orvane::platform::jack
