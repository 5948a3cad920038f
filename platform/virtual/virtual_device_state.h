#pragma once

#include "platform/virtual/virtual_device.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <utility>

namespace orvane::platform::virtual_devices {

class SteppedStream;

/// The state of a virtual device, shared by the driver, the device's stream and its control. Owned by the
/// driver; must outlive the stream.
struct VirtualDeviceState {
    explicit VirtualDeviceState(VirtualDevice described)
        : device(std::move(described)), bufferSize(device.bufferSize), cycleLength(device.bufferSize) {}

    /// The actual rate of its clock, in frames per second.
    [[nodiscard]] double clockRate() const noexcept {
        return device.description.sampleRate * (1.0 + device.clockOffsetPpm * 1e-6);
    }

    const VirtualDevice device;

    /// The stated buffer size in frames.
    std::atomic<std::uint32_t> bufferSize;
    /// The length of the next cycle in frames. Differs from the buffer size only if a fault is simulated.
    std::atomic<std::uint32_t> cycleLength;
    std::atomic<bool> isAlive = true;
    /// A stream that was opened before the last death does not revive with the device.
    std::atomic<std::uint32_t> deaths = 0;

    /// Another program has it. Main thread.
    bool isOccupied = false;
    /// A stream of this program has it. Main thread.
    bool isOpen = false;

    /// Held during every stepped cycle, and while the stream to step changes.
    std::mutex stepping;
    /// The running stream, if the driver is stepped.
    SteppedStream* steppedStream = nullptr;
};

} // namespace orvane::platform::virtual_devices
