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

/// The state of a server at one moment. A plain value.
struct JackServerState {
    /// In Hz.
    double sampleRate = 0.0;
    /// In frames.
    std::uint32_t bufferSize = 0;
    std::vector<JackDevice> devices;

    /// Null if there is no such device; valid as long as the state is unchanged.
    [[nodiscard]] const JackDevice* find(std::string_view uid) const;
};

/// The JACK server, seen by a client without ports, which is opened when first needed and again after the
/// server has come back. Posts changes. Any thread except libjack's own.
class JackServer final {
  public:
    /// `role` is added to the program's name to form the client's.
    JackServer(JackClients& jackClients, JackEvents& serverEvents, std::string_view role = " control")
        : clients(jackClients), events(serverEvents), clientRole(role) {}

    /// Absent if no server runs.
    std::optional<JackServerState> state();

    /// As `state`, but also absent if the client is not open yet or has lost the server.
    std::optional<JackServerState> knownState();

    /// The ports that send MIDI messages to others; absent if no server runs.
    std::optional<std::vector<JackPort>> midiSources();

    /// Whether the client is open on a running server.
    [[nodiscard]] bool isOpen();
    /// Waits until this client, too, is notified of the server's end, after another client was; briefly, in
    /// case it never is.
    void awaitEnd();

    /// Requests a buffer size in frames; returns whether the server accepted the request. Waits until the
    /// server runs at that size, for at most a fifth of a second. One thread at a time.
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
