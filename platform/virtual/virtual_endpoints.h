#pragma once

#include "dsp/realtime.h"
#include "platform/base/result.h"

#include <span>
#include <string_view>

namespace orvane::platform::virtual_devices {

/// The log category for virtual devices.
inline constexpr std::string_view virtualAudioLogCategory = "VirtualAudio";

/// The pacing of a virtual driver's streams.
enum class VirtualPacing {
    /// By the computer's clock: one I/O thread per stream.
    live,
    /// By calls of the driver's `VirtualClock`: cycles run on the calling thread, as fast as possible.
    stepped,
};

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
