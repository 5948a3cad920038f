#pragma once

#include "audio/mixer_realtime_state.h"
#include "dsp/automix_processor.h"
#include "dsp/realtime.h"

#include <cstddef>
#include <span>

namespace orvane::audio {

/// Turns one block of captured input into one block in the ring of every output in use: capture, reference
/// noise, inserts, automix, routing, rings, meters. `captured`: one block of `frameCount` samples per input
/// channel of the main device. `automix` has one channel more than `state` has strips. Denormals are flushed
/// meanwhile. I/O thread of the main device; real-time safe as long as block length and ring counts do not
/// change.
ORVANE_REALTIME void renderPass(
    std::span<const std::span<const float>> captured, std::size_t frameCount, dsp::AutomixProcessor& automix,
    MixerRealtimeState& state
) noexcept;

/// Fills a device's output blocks with the next `frameCount` samples of its rings; blocks beyond the rings
/// are silent. I/O thread of the device, real-time safe.
ORVANE_REALTIME void outputPull(
    const RingBuffers& rings, std::span<const std::span<float>> outputs, std::size_t frameCount
) noexcept;

} // namespace orvane::audio
