#pragma once

#include "dsp/realtime.h"
#include "platform/virtual/virtual_device_state.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <span>
#include <string_view>

namespace orvane::platform::virtual_devices {

/// The time of a stepped driver: runs cycles of its devices on the calling thread, without waiting. Owned by
/// the driver. One thread at a time, not necessarily the main thread; real-time safe if the devices' inputs,
/// outputs and clients are.
class VirtualClock final {
  public:
    explicit VirtualClock(std::span<const std::unique_ptr<VirtualDeviceState>> driverDevices) noexcept
        : devices(driverDevices) {}

    /// Runs the next `cycleCount` cycles of a device and returns how many ran: fewer if its stream is not
    /// running, stops or dies, and always none with a live driver.
    ORVANE_REALTIME std::size_t step(std::string_view uid, std::size_t cycleCount) noexcept;

    /// Advances time by `duration` for all devices: runs every cycle due before its end, in the order of due
    /// times, each device on its own clock.
    ORVANE_REALTIME void advance(std::chrono::nanoseconds duration) noexcept;

  private:
    std::span<const std::unique_ptr<VirtualDeviceState>> devices;
    std::chrono::nanoseconds now{0};
};

} // namespace orvane::platform::virtual_devices
