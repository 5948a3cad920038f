#pragma once

#include <string>
#include <string_view>

namespace orvane::platform {

/// What a port of the ALSA sequencer is known by: its client's name and its number in that client, from 0.
/// Bridges to other systems replace characters of the name, each in its own way, so only letters and digits
/// count. Any thread.
std::string sequencerIdentity(std::string_view clientName, unsigned long portNumber);

} // namespace orvane::platform
