#pragma once

#include "dsp/realtime.h"
#include "platform/virtual/stream_cycles.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <thread>

namespace orvane::platform::virtual_devices {

/// A stream in real time: its own I/O thread runs each cycle at its deadline.
class LiveStream final : public AudioStream {
  public:
    LiveStream(
        VirtualDeviceState& openedDevice, bool enableInput, AudioStreamClient& streamClient,
        SystemLog& systemLog
    );
    ~LiveStream() override;

    OSStatus start() override;
    bool stop() override;
    [[nodiscard]] std::size_t maximumFrames() const override { return longestVirtualBuffer; }
    [[nodiscard]] std::uint32_t xrunCount() const noexcept override { return xruns.load(); }
    [[nodiscard]] int realtimePriority() const noexcept override { return priority.load(); }

  private:
    ORVANE_REALTIME void runCycles() noexcept;
    ORVANE_REALTIME [[nodiscard]] bool waitUntil(std::chrono::nanoseconds deadline) const noexcept;

    double clockRate;
    StreamCycles cycles;
    std::atomic<bool> isStopping = false;
    std::atomic<std::uint32_t> xruns = 0;
    std::atomic<int> priority = 0;
    std::thread ioThread;
};

} // namespace orvane::platform::virtual_devices
