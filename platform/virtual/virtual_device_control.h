#pragma once

#include "platform/audio_hardware/device_watches.h"
#include "platform/virtual/virtual_device_state.h"

#include <cstdint>

namespace orvane::platform::virtual_devices {

/// Simulates what cables, other programs and faults do to a device. A handle; its driver must outlive it.
/// Main thread.
class VirtualDeviceControl final {
  public:
    VirtualDeviceControl(VirtualDeviceState& controlledDevice, DeviceNotifier& deviceNotifier) noexcept
        : device(controlledDevice), notifier(deviceNotifier) {}

    /// Unplugs it: it is no longer listed, its stream's cycles end for good, and watches are notified.
    void die();

    /// Plugs it in again: it is listed, and can be opened once the former stream is gone.
    void reappear();

    /// Lets another program take it, so that it cannot be opened; a stream that is open remains.
    void occupy() { device.isOccupied = true; }

    /// Lets the other program release it.
    void release() { device.isOccupied = false; }

    /// Changes its buffer size as another program would, to 1 to `longestVirtualBuffer` frames.
    void changeBufferSize(std::uint32_t frameCount);

    /// Makes it run cycles of 1 to `longestVirtualBuffer` frames without changing the stated buffer size and
    /// without a notification, until that size changes.
    void runCyclesOf(std::uint32_t frameCount) { device.cycleLength = frameCount; }

  private:
    VirtualDeviceState& device;
    DeviceNotifier& notifier;
};

} // namespace orvane::platform::virtual_devices
