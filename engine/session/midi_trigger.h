#pragma once

#include <cstdint>

namespace orvane::session {

/// The note-on message that recalls a snapshot. A plain value.
struct MIDITrigger {
    /// 0 to 15.
    std::int64_t channel = 0;
    /// 0 to 127.
    std::int64_t note = 0;

    bool operator==(const MIDITrigger&) const = default;
};

} // namespace orvane::session
