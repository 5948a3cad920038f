#pragma once

#include "dsp/realtime.h"
#include "platform/audio_hardware/audio_driver.h"
#include "platform/base/cycle_gate.h"
#include "platform/pipewire/missed_cycles.h"
#include "platform/pipewire/pipewire_devices.h"
#include "platform/pipewire/pipewire_filter.h"
#include "platform/pipewire/pipewire_graph.h"

#include <spa/node/io.h>
#include <sys/types.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace orvane::platform::pipewire {

class PipeWireDeviceStates;

/// The length and rate of cycles. A plain value.
struct PipeWireCycles {
    /// In frames.
    std::uint32_t frameCount = 0;
    /// In Hz.
    std::uint32_t sampleRate = 0;

    bool operator==(const PipeWireCycles&) const = default;
};

/// A stream on a PipeWire device: a node of its own, with one port per channel, that is linked to the
/// device's port while the stream runs. It has a connection of its own, so that its cycles wait for no
/// other's.
class PipeWireStream final : public AudioStream {
  public:
    /// See AudioDriver::open; uses all ports of the device. `frameCount` is what to request of the graph, if
    /// anything. Wakes the graph when its cycles change. `states`, which knows the stream until it is
    /// destroyed, must outlive it.
    static Result<std::unique_ptr<AudioStream>, OSStatus> open(
        PipeWireGraph& graph, PipeWireDeviceStates& states, PipeWireDevice device,
        std::optional<std::uint32_t> frameCount, AudioStreamClient& client
    );
    ~PipeWireStream() override;

    OSStatus start() override;
    bool stop() override;
    [[nodiscard]] std::size_t maximumFrames() const override;
    [[nodiscard]] std::uint32_t xrunCount() const noexcept override { return missed.load(); }
    [[nodiscard]] int realtimePriority() const noexcept override;

    /// Requests another length of the cycles, and waits briefly until they have it. Main thread.
    void request(std::uint32_t frameCount);

    /// The cycles that run; absent while they do not, or do not have the requested length yet. Any thread.
    [[nodiscard]] std::optional<PipeWireCycles> cycles() const noexcept;

    [[nodiscard]] const PipeWireDevice& device() const { return linked; }

  private:
    /// Our ports on one side and the device's ports that they are linked to.
    template <class Sample>
    struct Side {
        std::vector<void*> ports;
        std::vector<Sample*> buffers;
        std::vector<std::span<Sample>> blocks;

        bool addPorts(PipeWireFilter& filter, spa_direction direction, std::size_t count, const char* kind);
        ORVANE_REALTIME void takeBuffers(std::uint32_t frameCount) noexcept;
        /// Ports that the server provides no buffer for have `spare`.
        ORVANE_REALTIME void select(std::size_t first, std::size_t count, Sample* spare) noexcept;
    };

    PipeWireStream(
        PipeWireGraph& ofServer, PipeWireDeviceStates& deviceStates, PipeWireDevice device,
        std::optional<std::uint32_t> frameCount, AudioStreamClient& cycleClient
    );
    bool prepare();
    bool link();
    void awaitRequestedLength();
    ORVANE_REALTIME static void process(void* self, const spa_io_position& position) noexcept;
    ORVANE_REALTIME void observe(const spa_io_clock& clock) noexcept;
    ORVANE_REALTIME void cycle(std::size_t first, std::size_t count) noexcept;

    PipeWireGraph& graph;
    PipeWireDeviceStates& states;
    PipeWireDevice linked;
    /// 0 if none is.
    std::atomic<std::uint32_t> requested = 0;
    AudioStreamClient& streamClient;
    CycleGate gate;
    Side<const float> inputs;
    Side<float> outputs;
    /// For ports without a buffer: what is captured, and where to play.
    std::vector<float> silence;
    std::vector<float> nowhere;

    std::atomic<std::uint32_t> missed = 0;
    std::atomic<std::uint32_t> frames = 0;
    std::atomic<std::uint32_t> rate = 0;
    /// The cycles differ from the requested ones only if others want it.
    std::atomic<bool> isSettled = false;
    /// The thread of the cycles, from the first one on; 0 before.
    std::atomic<pid_t> ioThread = 0;
    /// The I/O thread's.
    MissedCycles clock;
    bool isRunning = false;
    /// The last member, so that its cycles end before the objects that they use are destroyed.
    PipeWireFilter node;
};

} // namespace orvane::platform::pipewire
