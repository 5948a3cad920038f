#pragma once

#include "platform/jack/jack_clients.h"
#include "platform/jack/jack_events.h"
#include "platform/jack/jack_library_call.h"

#include <jack/jack.h>
#include <jack/uuid.h>

#include <atomic>
#include <string>

namespace orvane::platform::jack {

/// One client of a JACK server, closed at its destruction. Only for the sources of what is made with a
/// JackClients: other headers do not show libjack. Any thread but libjack's own.
class JackClient final {
  public:
    ~JackClient();
    JackClient(const JackClient&) = delete;
    JackClient& operator=(const JackClient&) = delete;

    /// Gives libjack's handle to `call`, in which libjack may be called, or returns false where the server is
    /// gone.
    template <class Call>
    bool use(Call&& call) {
        const JackLibraryCall libraryCall(clients.libraryMutex);
        if (handle == nullptr || isGone()) return false;
        call(handle);
        if (libraryCall.isBrokenOff()) loseServer();
        return !isGone();
    }

    /// Gives the client or one of its ports the name that connection programs show instead of its own, until
    /// the client closes. Only where the server is PipeWire: jackd keeps these names in one store for all
    /// servers and clients of a user, which they lock, and a program that was killed in there, or closed with
    /// many names set, leaves the server waiting for good. Only within a call of `use`.
    void setPrettyName(jack_uuid_t subject, const std::string& prettyName);

    /// Whether libjack is PipeWire's. Any thread.
    [[nodiscard]] static bool isPipeWire();

    /// Ends the client's part in the server's cycles, also where the server is gone: no process callback is
    /// running when it returns and none comes after.
    void deactivate();

    /// Leaves the client to a process callback that does not return: nothing calls libjack with it any more,
    /// and it must never be freed.
    void abandon();

    /// Whether somebody hears it, so that it is not to end for the sake of another client.
    void setPlaying(bool playing) { isPlaying.store(playing); }

    /// Whether the server has shut down, has shut the client out or has not answered it; it stays so.
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
