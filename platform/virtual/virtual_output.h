#pragma once

#include "dsp/realtime.h"
#include "platform/base/result.h"
#include "platform/virtual/virtual_pacing.h"

#include <span>

namespace orvane::platform::virtual_devices {

/// The sink of a virtual device's outputs. Used by one stream at a time: `start`, any number of calls of
/// `take`, `stop`.
class VirtualOutput {
  public:
    virtual ~VirtualOutput() = default;

    /// Prepares for a stream's first cycle. If it fails, the stream does not start. Main thread.
    virtual Result<Done> start(VirtualPacing) { return Done{}; }

    /// Takes `blocks` (the device's output channels x the frames of a cycle). Live: the stream's I/O thread,
    /// real-time safe. Stepped: the stepping thread; may be slow.
    ORVANE_REALTIME virtual void take(std::span<const std::span<const float>> blocks) noexcept = 0;

    /// Called when the stream has stopped. Main thread.
    virtual void stop() {}
};

} // namespace orvane::platform::virtual_devices
