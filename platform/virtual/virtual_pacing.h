#pragma once

namespace orvane::platform::virtual_devices {

/// The pacing of a virtual driver's streams.
enum class VirtualPacing {
    /// By the computer's clock: one I/O thread per stream.
    live,
    /// By calls of the driver's `VirtualClock`: cycles run on the calling thread, as fast as possible.
    stepped,
};

} // namespace orvane::platform::virtual_devices
