#pragma once

#include "dsp/realtime.h"
#include "platform/base/result.h"
#include "platform/virtual/virtual_pacing.h"

#include <span>

namespace orvane::platform::virtual_devices {

/// Where the input samples of a virtual device come from. One stream at a time uses it: `start`, any number
/// of calls of `fill`, `stop`.
class VirtualInput {
  public:
    virtual ~VirtualInput() = default;

    /// Gets ready to play from the beginning. Where it fails the stream does not start. Main thread.
    virtual Result<Done> start(VirtualPacing) { return Done{}; }

    /// Fills `blocks` (the device's input channels x the frames of a cycle, at least one of each) with the
    /// samples that come next. Live: the stream's I/O thread, real-time safe. Stepped: the stepping thread,
    /// and may take its time.
    ORVANE_REALTIME virtual void fill(std::span<const std::span<float>> blocks) noexcept = 0;

    /// Gives up what playing needed. Main thread.
    virtual void stop() {}
};

} // namespace orvane::platform::virtual_devices
