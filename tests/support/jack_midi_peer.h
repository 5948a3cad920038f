#pragma once

#include <jack/jack.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::test {

/// Another JACK client, with MIDI output ports "out_1" and so on.
class JackMIDIPeer final {
  public:
    struct Event {
        /// From 0.
        std::size_t port = 0;
        std::vector<std::uint8_t> bytes;
    };

    /// `clientName` is made unique.
    JackMIDIPeer(std::string_view clientName, std::size_t portCount);
    ~JackMIDIPeer();

    /// The full name, as other clients see it.
    [[nodiscard]] std::string portName(std::size_t port) const;

    /// The number of inputs connected to the port as of the current cycle.
    [[nodiscard]] int listenerCount(std::size_t port) const;

    /// Sends the events in one cycle, each one frame after the last while the cycle has frames. Waits for the
    /// cycle; returns whether it ran.
    bool play(const std::vector<Event>& events);

  private:
    /// Ordered with the test by the server, which ThreadSanitizer does not see.
    [[gnu::no_sanitize("thread")]] static int process(jack_nframes_t frameCount, void* self) noexcept;

    jack_client_t* client;
    std::vector<jack_port_t*> ports;
    std::atomic<const std::vector<Event>*> toPlay = nullptr;
};

} // namespace orvane::test
