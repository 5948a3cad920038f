#pragma once

#include "dsp/realtime.h"
#include "platform/base/result.h"
#include "platform/virtual/virtual_pacing.h"

#include <span>

namespace orvane::platform::virtual_devices {

/// The source of a virtual device's input samples. Used by one stream at a time: `start`, any number of calls
/// of `fill`, `stop`.
class VirtualInput {
  public:
    virtual ~VirtualInput() = default;

    /// Prepares to play from the beginning. If it fails, the stream does not start. Main thread.
    virtual Result<Done> start(VirtualPacing) { return Done{}; }

    /// Fills `blocks` (the device's input channels x the frames of a cycle, at least one of each) with the
    /// next samples. Live: the stream's I/O thread, real-time safe. Stepped: the stepping thread; may be
    /// slow.
    ORVANE_REALTIME virtual void fill(std::span<const std::span<float>> blocks) noexcept = 0;

    /// Releases what playing needed. Main thread.
    virtual void stop() {}
};

} // namespace orvane::platform::virtual_devices
