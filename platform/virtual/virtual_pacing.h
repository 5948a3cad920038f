#pragma once

namespace orvane::platform::virtual_devices {

/// What the cycles of a virtual driver's streams wait for.
enum class VirtualPacing {
    /// The machine's clock: one I/O thread per stream.
    live,
    /// Whoever steps the driver's `VirtualClock`: cycles run on the stepping thread, as fast as it likes.
    stepped,
};

} // namespace orvane::platform::virtual_devices
