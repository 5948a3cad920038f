#pragma once

#include "dsp/realtime.h"
#include "platform/base/result.h"
#include "platform/virtual/virtual_pacing.h"

#include <span>

namespace orvane::platform::virtual_devices {

/// Who takes what the outputs of a virtual device were given. One stream at a time uses it: `start`, any
/// number of calls of `take`, `stop`.
class VirtualOutput {
  public:
    virtual ~VirtualOutput() = default;

    /// Gets ready for a stream's first cycle. Where it fails the stream does not start. Main thread.
    virtual Result<Done> start(VirtualPacing) { return Done{}; }

    /// Takes `blocks` (the device's output channels x the frames of a cycle). Live: the stream's I/O thread,
    /// real-time safe. Stepped: the stepping thread, and may take its time.
    ORVANE_REALTIME virtual void take(std::span<const std::span<const float>> blocks) noexcept = 0;

    /// The stream has stopped; nothing follows. Main thread.
    virtual void stop() {}
};

} // namespace orvane::platform::virtual_devices
