#pragma once

#include <cstdint>
#include <variant>

namespace orvane::session {

namespace output {

/// Not routed.
struct None {
    bool operator==(const None&) const = default;
};

/// To one channel of the device, counted from 0.
struct Mono {
    std::int64_t channel = 0;

    bool operator==(const Mono&) const = default;
};

/// To two channels of the device, counted from 0, with a pan position from -1 (full left) to +1 (full right).
struct Stereo {
    std::int64_t left = 0;
    std::int64_t right = 0;
    double pan = 0.0;

    bool operator==(const Stereo&) const = default;
};

} // namespace output

/// Where a channel's processed signal goes on the main device. Indices are not bounded here: their device may
/// be absent. A plain value.
using OutputRouting = std::variant<output::None, output::Mono, output::Stereo>;

} // namespace orvane::session
