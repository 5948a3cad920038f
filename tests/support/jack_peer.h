#pragma once

#include <jack/jack.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::test {

/// A JACK client name that no other process uses: libjack never opens two clients of the same name at once,
/// not even on different servers.
std::string uniqueJackName(std::string_view name);

/// Another JACK client beside the one under test: plays a known signal into `channelCount` ports of a client
/// and records as many of its outputs.
class JackPeer final {
  public:
    /// `clientName` is made unique. `portFlags` are added to those of all ports.
    explicit JackPeer(std::string_view clientName, std::size_t channelCount, unsigned long portFlags = 0);
    ~JackPeer();

    [[nodiscard]] const std::string& name() const { return uniqueName; }

    /// The sample that is played; never 0.
    static float signal(std::size_t channel, std::size_t frame);

    /// Connects to the ports CLIENT:in_1, CLIENT:out_1 and so on; returns whether all of them exist.
    bool connectTo(const std::string& client);

    /// Plays the signal from its start and returns what was received for its first `frameCount` frames, one
    /// vector per channel; fewer frames if the signal did not return.
    std::vector<std::vector<float>> exchange(std::size_t frameCount);

    bool setBufferSize(std::uint32_t frameCount);

    /// The number of missed cycles that the server has reported.
    [[nodiscard]] std::uint32_t xrunCount() const { return xruns.load(); }

  private:
    static int process(jack_nframes_t frameCount, void* self) noexcept;
    static int countXrun(void* self) noexcept;

    std::string uniqueName;
    /// Declared before the client, whose threads start with it.
    std::atomic<std::uint32_t> xruns = 0;
    jack_client_t* client;
    std::vector<jack_port_t*> outputs;
    std::vector<jack_port_t*> inputs;
    std::atomic<bool> isExchanging = false;
    std::size_t playedFrames = 0;
    std::size_t wantedFrames = 0;
    std::vector<std::vector<float>> recorded;
};

} // namespace orvane::test
