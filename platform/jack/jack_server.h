#pragma once

#include "platform/jack/jack_client.h"
#include "platform/jack/jack_clients.h"
#include "platform/jack/jack_devices.h"
#include "platform/jack/jack_events.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::platform::jack {

/// A server as it is at one moment. A plain value.
struct JackServerState {
    /// In Hz.
    double sampleRate = 0.0;
    /// In frames.
    std::uint32_t bufferSize = 0;
    std::vector<JackDevice> devices;

    /// Null where there is no such device; valid as long as the state is not changed.
    [[nodiscard]] const JackDevice* find(std::string_view uid) const;
};

/// The JACK server, seen through a client without ports that is opened when first needed and again after the
/// server has come back. Posts what changes. Any thread but libjack's own.
class JackServer final {
  public:
    /// `role` is added to the program's name in that of the client.
    JackServer(JackClients& jackClients, JackEvents& serverEvents, std::string_view role = " control")
        : clients(jackClients), events(serverEvents), clientRole(role) {}

    /// Nothing where no server runs.
    std::optional<JackServerState> state();

    /// As `state`, but nothing also where we are not yet, or no longer, a client of the server.
    std::optional<JackServerState> knownState();

    /// The ports that give MIDI messages to others; nothing where no server runs.
    std::optional<std::vector<JackPort>> midiSources();

    /// Whether we are a client of a server that runs.
    [[nodiscard]] bool isOpen();
    /// Waits until we have been told, too, that the server is gone, as another client has been; not for long
    /// where that is not so.
    void awaitEnd();

    /// Asks for a buffer size in frames; whether the server took the request. Waits until it runs at that
    /// size, for a fifth of a second at most. One thread at a time.
    bool requestBufferSize(std::uint32_t frameCount);

  private:
    bool open();
    std::optional<JackServerState> readState();
    static void bufferSizeChanged(jack_nframes_t frameCount, void* self) noexcept;
    static void sampleRateChanged(jack_nframes_t sampleRate, void* self) noexcept;
    static void portChanged(jack_port_id_t port, int isRegistered, void* self) noexcept;
    static void clientChanged(const char* name, int isRegistered, void* self) noexcept;

    JackClients& clients;
    JackEvents& events;
    std::string clientRole;
    std::mutex mutex;
    std::unique_ptr<JackClient> client;
    std::atomic<std::uint32_t> lastBufferSize = 0;
    JackEvents bufferSizeChanges;
    std::atomic<std::uint32_t> lastSampleRate = 0;
};

} // namespace orvane::platform::jack
