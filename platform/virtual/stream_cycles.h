#pragma once

#include "dsp/realtime.h"
#include "platform/audio_hardware/audio_driver.h"
#include "platform/base/cycle_gate.h"
#include "platform/base/planar_blocks.h"
#include "platform/base/system_log.h"
#include "platform/virtual/virtual_device_state.h"

#include <cstddef>
#include <cstdint>

namespace orvane::platform::virtual_devices {

/// The cycles of an open device, independent of their pacing: each runs the input source, the client and the
/// output sink in turn. Owned by a stream; the device is open while it exists. Main thread, except what a
/// cycle calls.
class StreamCycles final {
  public:
    StreamCycles(
        VirtualDeviceState& openedDevice, bool enableInput, AudioStreamClient& streamClient,
        SystemLog& systemLog
    );
    ~StreamCycles();
    StreamCycles(const StreamCycles&) = delete;
    StreamCycles& operator=(const StreamCycles&) = delete;

    /// Starts source and sink. Fails if one of them cannot start, which the log reports.
    OSStatus begin(VirtualPacing pacing);

    /// Admits no further cycle and waits for the running one; returns false if that one has been abandoned.
    [[nodiscard]] bool close() { return gate.close(); }

    /// Stops source and sink and completes recordings. Called after `close`.
    void end();

    /// Lets another stream open the device after the last cycle has been abandoned.
    void giveDeviceBack() { device.isOpen = false; }

    /// Whether the device has been alive since it was opened. Any thread, real-time safe.
    ORVANE_REALTIME [[nodiscard]] bool isDeviceAlive() const noexcept {
        return device.deaths.load(std::memory_order_acquire) == deathsBefore;
    }

    /// The length of the next cycle in frames. Cycle thread, real-time safe.
    ORVANE_REALTIME [[nodiscard]] std::size_t nextLength() const noexcept {
        return device.cycleLength.load(std::memory_order_relaxed);
    }

    /// Runs a cycle of `frameCount` frames, up to `longestVirtualBuffer`. Returns false if the stream is
    /// over: the thread must then not use the device again. Cycle thread, real-time safe.
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
