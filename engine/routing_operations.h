#pragma once

#include "engine/session/channel_strip.h"
#include "engine/session/master_output_routing.h"
#include "engine/session/output_routing.h"

#include <cstdint>
#include <span>

namespace orvane::engine {

// What the routing controls make of a routing; channels count from 0.

/// A pair at centre from an even channel on: the routing's own or the one below; the first pair for none.
session::OutputRouting asStereo(const session::OutputRouting& routing);
session::MasterOutputRouting asStereo(const session::MasterOutputRouting& routing);

/// The routing's channel, or its left one; the first channel for none.
session::OutputRouting asMono(const session::OutputRouting& routing);
session::MasterOutputRouting asMono(const session::MasterOutputRouting& routing);

/// The pair from `left` on with the pan kept; anything but a pair stays as it is.
session::OutputRouting withStereoPair(const session::OutputRouting& routing, std::int64_t left);
session::MasterOutputRouting withStereoPair(const session::MasterOutputRouting& routing, std::int64_t left);

/// The pair with another pan, kept within -1 and 1; anything but a pair stays as it is.
session::OutputRouting withPan(const session::OutputRouting& routing, double pan);

/// Whether every channel that the master bus goes to exists on a device of `outputCount` channels.
bool exists(const session::MasterOutputRouting& routing, std::int64_t outputCount);

/// How many outputs a device needs so that the routing finds all its channels; 0 for none.
std::uint64_t outputsNeeded(const session::OutputRouting& routing);
std::uint64_t outputsNeeded(const session::MasterOutputRouting& routing);

/// Gives every strip without an input, or without an output, the device channel of its own number if the
/// device has it.
void assignDefaultRouting(
    std::span<session::ChannelStrip> strips, std::int64_t inputCount, std::int64_t outputCount
);

/// Patches every strip to the input and the output of its own number, or to none if the device lacks them.
void resetRoutingOneToOne(
    std::span<session::ChannelStrip> strips, std::int64_t inputCount, std::int64_t outputCount
);

} // namespace orvane::engine
