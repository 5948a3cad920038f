#pragma once

#include <string>
#include <string_view>

namespace orvane::platform {

/// Identifies a port of the ALSA sequencer by its client's name and its number in that client, from 0.
/// Bridges to other systems each replace other characters of the name, so only letters and digits count. Any
/// thread.
std::string sequencerIdentity(std::string_view clientName, unsigned long portNumber);

} // namespace orvane::platform
