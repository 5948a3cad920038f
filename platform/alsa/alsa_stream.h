#pragma once

#include "dsp/channel_blocks.h"
#include "dsp/realtime.h"
#include "platform/alsa/duplex.h"
#include "platform/audio_hardware/audio_driver.h"
#include "platform/base/cycle_gate.h"
#include "platform/base/realtime_priority.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <thread>
#include <vector>

namespace orvane::platform::alsa {

/// A stream on an open device, with an I/O thread while it runs: each turn captures a period, has the client
/// render the next one and plays it. The thread restarts a device that fails; it ends if the device fails
/// repeatedly or has gone. Owned by the driver's user; main thread.
class AlsaStream final : public AudioStream {
  public:
    /// `died` is called on the I/O thread, as its last act, if the device gives up. `deviceLease` is held as
    /// long as the stream lives. `priorityLender` helps an I/O thread that may not take real-time priority
    /// itself; may be null.
    AlsaStream(
        Duplex openDevice, AudioStreamClient& streamClient, std::function<void()> died,
        std::shared_ptr<const void> deviceLease, PriorityLender* priorityLender
    );
    ~AlsaStream() override;
    AlsaStream(const AlsaStream&) = delete;
    AlsaStream& operator=(const AlsaStream&) = delete;

    OSStatus start() override;
    bool stop() override;
    [[nodiscard]] std::size_t maximumFrames() const override { return device.periodFrames(); }
    [[nodiscard]] std::uint32_t xrunCount() const noexcept override;
    [[nodiscard]] int realtimePriority() const noexcept override;

  private:
    /// One block per channel, and the views that are passed to a cycle.
    struct Blocks {
        Blocks(std::size_t channelCount, std::size_t frameCount);

        dsp::ChannelBlocks<float> samples;
        std::vector<std::span<float>> writable;
        std::vector<std::span<const float>> readable;
    };

    void run() noexcept;
    ORVANE_REALTIME bool turnUntilStopped() noexcept;
    ORVANE_REALTIME ErrorNumber turn() noexcept;
    ORVANE_REALTIME ErrorNumber restart() noexcept;

    std::shared_ptr<const void> lease;
    Duplex device;
    AudioStreamClient& client;
    CycleGate gate;
    std::function<void()> tellDeath;
    PriorityLender* lender;
    Blocks inputs;
    Blocks outputs;
    std::atomic<bool> stopping = false;
    std::atomic<bool> dead = false;
    std::atomic<std::uint32_t> xruns = 0;
    /// The priority of the last I/O thread.
    std::atomic<int> priority = 0;
    /// The kernel's id of the I/O thread, set once the thread has taken its priority.
    std::atomic<pid_t> threadId = 0;
    std::thread thread;
};

} // namespace orvane::platform::alsa
