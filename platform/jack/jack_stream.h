#pragma once

#include "dsp/realtime.h"
#include "platform/audio_hardware/audio_driver.h"
#include "platform/base/cycle_gate.h"
#include "platform/jack/frame_gaps.h"
#include "platform/jack/jack_client.h"
#include "platform/jack/jack_clients.h"
#include "platform/jack/jack_devices.h"
#include "platform/jack/jack_events.h"

#include <sys/types.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace orvane::platform::jack {

/// A stream on a JACK device: a client of its own with one port per channel, connected to the device's port
/// while the stream runs.
class JackStream final : public AudioStream {
  public:
    /// See AudioDriver::open; uses all ports of the device. Posts when the server is gone.
    static Result<std::unique_ptr<AudioStream>, OSStatus>
    open(JackClients& clients, JackEvents& events, const JackDevice& device, AudioStreamClient& client);
    ~JackStream() override;

    OSStatus start() override;
    bool stop() override;
    [[nodiscard]] std::size_t maximumFrames() const override;
    [[nodiscard]] std::uint32_t xrunCount() const noexcept override { return xruns.load(); }
    [[nodiscard]] int realtimePriority() const noexcept override;

  private:
    /// Our ports on one side and the device's ports that they are connected to.
    template <class Sample>
    struct Side {
        std::vector<std::string> devicePorts;
        std::vector<jack_port_t*> ports;
        std::vector<std::span<Sample>> blocks;

        bool registerPorts(jack_client_t* client, const char* prefix, unsigned long direction);
        /// Names the ports "Input 1" and so on, if that is the `kind`.
        void namePorts(JackClient& owner, const std::string& kind) const;
        ORVANE_REALTIME void takeBlocks(jack_nframes_t frameCount) noexcept;
    };

    JackStream(const JackDevice& device, AudioStreamClient& cycleClient);
    bool prepare();
    /// Counts in only one way, so that each is counted once.
    bool countXruns(jack_client_t* client);
    OSStatus activate(jack_client_t* client);
    [[nodiscard]] bool connect(jack_client_t* client) const;
    ORVANE_REALTIME static void process(jack_nframes_t frameCount, void* self) noexcept;
    ORVANE_REALTIME void observeCycle(jack_nframes_t frameCount) noexcept;
    static void countXrun(void* self) noexcept;

    AudioStreamClient& streamClient;
    CycleGate gate;
    Side<const float> inputs;
    Side<float> outputs;
    std::atomic<std::uint32_t> xruns = 0;
    /// The process thread, from the first cycle on; 0 before.
    std::atomic<pid_t> ioThread = 0;
    /// The client, if missed cycles only show in their times, because PipeWire does not report them.
    jack_client_t* silentAboutXruns = nullptr;
    FrameGaps gaps;
    bool isRunning = false;
    /// The last member, so that it closes before the objects that its callbacks use are destroyed.
    std::unique_ptr<JackClient> jackClient;
};

} // namespace orvane::platform::jack
