#pragma once

#include "platform/audio_hardware/device_watches.h"
#include "platform/virtual/virtual_device_state.h"

#include <cstdint>

namespace orvane::platform::virtual_devices {

/// Does to a virtual device what cables, other programs and bad luck do to a real one. A handle; its driver
/// outlives it. Main thread.
class VirtualDeviceControl final {
  public:
    VirtualDeviceControl(VirtualDeviceState& controlledDevice, DeviceNotifier& deviceNotifier) noexcept
        : device(controlledDevice), notifier(deviceNotifier) {}

    /// Unplugs it: it is no longer listed, its stream's cycles end for good, watches are told.
    void die();

    /// Plugs it in again: it is listed and can be opened once the stream from before is gone.
    void reappear();

    /// Lets somebody else take it, so that it cannot be opened; a stream that is open stays.
    void occupy() { device.isOccupied = true; }

    /// Has somebody else give it back.
    void release() { device.isOccupied = false; }

    /// Changes its buffer size as another program would, to 1 to `longestVirtualBuffer` frames.
    void changeBufferSize(std::uint32_t frameCount);

    /// Has it run cycles of 1 to `longestVirtualBuffer` frames while it states the buffer size from before
    /// and tells nobody, until that changes.
    void runCyclesOf(std::uint32_t frameCount) { device.cycleLength = frameCount; }

  private:
    VirtualDeviceState& device;
    DeviceNotifier& notifier;
};

} // namespace orvane::platform::virtual_devices
