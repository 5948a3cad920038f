#pragma once

#include "platform/virtual/virtual_device.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <utility>

namespace orvane::platform::virtual_devices {

class SteppedStream;

/// What a device of a virtual driver is like at the moment, shared by the driver, the device's stream and
/// whoever makes it misbehave. The driver owns it; it outlives the stream.
struct VirtualDeviceState {
    explicit VirtualDeviceState(VirtualDevice described)
        : device(std::move(described)), bufferSize(device.bufferSize), cycleLength(device.bufferSize) {}

    /// The rate that its clock really runs at, in frames per second.
    [[nodiscard]] double clockRate() const noexcept {
        return device.description.sampleRate * (1.0 + device.clockOffsetPpm * 1e-6);
    }

    const VirtualDevice device;

    /// The buffer size that it states, in frames.
    std::atomic<std::uint32_t> bufferSize;
    /// The frames of the next cycle. Differs from the buffer size only where a device misbehaves.
    std::atomic<std::uint32_t> cycleLength;
    std::atomic<bool> isAlive = true;
    /// A stream that was opened before the last death does not come back to life with the device.
    std::atomic<std::uint32_t> deaths = 0;

    /// Somebody else has it. Main thread.
    bool isOccupied = false;
    /// A stream of ours has it. Main thread.
    bool isOpen = false;

    /// Held during every stepped cycle, and whenever the stream to step changes.
    std::mutex stepping;
    /// The stream that runs, where the driver is stepped.
    SteppedStream* steppedStream = nullptr;
};

} // namespace orvane::platform::virtual_devices
