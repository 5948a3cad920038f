#pragma once

#include "dsp/realtime.h"
#include "platform/virtual/cycle_schedule.h"
#include "platform/virtual/stream_cycles.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace orvane::platform::virtual_devices {

/// A stream whose cycles a `VirtualClock` runs. The main thread's calls exclude a running cycle.
class SteppedStream final : public AudioStream {
  public:
    SteppedStream(
        VirtualDeviceState& openedDevice, bool enableInput, AudioStreamClient& streamClient,
        SystemLog& systemLog
    );
    ~SteppedStream() override;

    OSStatus start() override;
    bool stop() override;
    [[nodiscard]] std::size_t maximumFrames() const override { return longestVirtualBuffer; }
    [[nodiscard]] std::uint32_t xrunCount() const noexcept override { return 0; }
    [[nodiscard]] int realtimePriority() const noexcept override { return 0; }

    /// When the next cycle is due, with `now` as the current time; absent if the device has died. The first
    /// call after a start fixes its place in time. Stepping thread, `stepping` held.
    ORVANE_REALTIME std::optional<std::chrono::nanoseconds> due(std::chrono::nanoseconds now) noexcept;

    /// Runs the next cycle; returns false if the device has died. Stepping thread, `stepping` held.
    ORVANE_REALTIME bool step() noexcept;

  private:
    VirtualDeviceState& device;
    StreamCycles cycles;
    bool isRunning = false;
    /// Counted from the start.
    CycleSchedule schedule;
    std::optional<std::chrono::nanoseconds> startTime;
};

} // namespace orvane::platform::virtual_devices
