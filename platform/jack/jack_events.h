#pragma once

#include "platform/base/event_set.h"

#include <cstdint>

namespace orvane::platform::jack {

/// Events of the server, reported by libjack's threads; each is one bit.
enum class JackEvent : std::uint32_t {
    bufferSizeChanged = 1,
    /// Ports have been removed, or must be checked.
    portsRemoved = 2,
    serverGone = 4,
    /// Sent by the owner of the waiting thread: no further events.
    finished = 8,
    /// Ports have been added, or must be listed.
    portsAdded = 16,
    /// MIDI messages have arrived or have been sent.
    messages = 32,
    sampleRateChanged = 64,
};

/// Passes events from libjack's threads, on which libjack must not be called, to a single waiting thread.
class JackEvents final : public EventSet<JackEvent> {};

} // namespace orvane::platform::jack
