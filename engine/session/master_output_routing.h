#pragma once

#include "engine/session/output_routing.h"

#include <cstdint>
#include <variant>

namespace orvane::session {

namespace master_output {

using output::Mono;
using output::None;

/// To two channels of the device, counted from 0.
struct Stereo {
    std::int64_t left = 0;
    std::int64_t right = 0;

    bool operator==(const Stereo&) const = default;
};

} // namespace master_output

/// Where the master bus goes: on the master output device, or on the main device if none is selected. A plain
/// value.
using MasterOutputRouting = std::variant<master_output::None, master_output::Mono, master_output::Stereo>;

} // namespace orvane::session
