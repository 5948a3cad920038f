#pragma once

#include "dsp/realtime.h"
#include "platform/audio_hardware/audio_driver.h"
#include "platform/base/cycle_gate.h"
#include "platform/base/system_log.h"
#include "platform/virtual/planar_blocks.h"
#include "platform/virtual/virtual_device_state.h"

#include <cstddef>
#include <cstdint>

namespace orvane::platform::virtual_devices {

/// The cycles of an open device, whatever paces them: its input source, its client and its output sink in
/// turn. A stream owns it, and while it exists the device is open. Main thread, but for what a cycle needs.
class StreamCycles final {
  public:
    StreamCycles(
        VirtualDeviceState& openedDevice, bool enableInput, AudioStreamClient& streamClient,
        SystemLog& systemLog
    );
    ~StreamCycles();
    StreamCycles(const StreamCycles&) = delete;
    StreamCycles& operator=(const StreamCycles&) = delete;

    /// Gets source and sink ready. Fails where one of them cannot start, which the log then tells.
    OSStatus begin(VirtualPacing pacing);

    /// Lets no further cycle run and waits for the one under way; false if that one has been abandoned.
    [[nodiscard]] bool close() { return gate.close(); }

    /// Lets go of source and sink, what is recorded finished, after `close`.
    void end();

    /// Lets another stream open the device, after the last cycle has been abandoned.
    void giveDeviceBack() { device.isOpen = false; }

    /// Whether the device has lived on since it was opened. Any thread, real-time safe.
    ORVANE_REALTIME [[nodiscard]] bool isDeviceAlive() const noexcept {
        return device.deaths.load(std::memory_order_acquire) == deathsBefore;
    }

    /// The frames of the cycle that comes next. Cycle thread, real-time safe.
    ORVANE_REALTIME [[nodiscard]] std::size_t nextLength() const noexcept {
        return device.cycleLength.load(std::memory_order_relaxed);
    }

    /// One cycle of `frameCount` frames, up to `longestVirtualBuffer`. Returns false if the cycles are over:
    /// then the thread must not use the device again. Cycle thread, real-time safe.
    [[nodiscard]] ORVANE_REALTIME bool run(std::size_t frameCount) noexcept;

  private:
    OSStatus refuse(const Error& why);

    VirtualDeviceState& device;
    std::uint32_t deathsBefore;
    VirtualInput* input;
    VirtualOutput* output;
    AudioStreamClient& client;
    CycleGate gate;
    SystemLog& log;
    PlanarBlocks inputBlocks;
    PlanarBlocks outputBlocks;
};

} // namespace orvane::platform::virtual_devices
