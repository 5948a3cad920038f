#pragma once

#include "platform/base/result.h"

#include <cstdint>
#include <string_view>

namespace orvane::cli {

/// A note-on to send. A plain value.
struct SentNote {
    /// 0 to 15.
    std::uint8_t channel = 0;
    /// 0 to 127.
    std::uint8_t note = 0;
    /// 1 to 127.
    std::uint8_t velocity = 100;

    bool operator==(const SentNote&) const = default;
};

/// Reads CHANNEL:NOTE or CHANNEL:NOTE:VELOCITY, with channels counted from 1.
platform::Result<SentNote> parseNote(std::string_view text);

/// Makes a MIDI source that other programs can see, waits until one connects to it, and sends the note-on and
/// the note-off. Fails if there is no MIDI service, or if no program connects in time. Main thread.
platform::Result<platform::Done> sendNote(const SentNote& note, double mostSeconds);

} // namespace orvane::cli
