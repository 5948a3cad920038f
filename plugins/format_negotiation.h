#pragma once

#include "platform/effects/audio_unit_host.h"

#include <cstddef>
#include <optional>

namespace orvane::plugins {

/// Sets a plugin up for mono or else stereo at a rate in Hz and allocates its render resources. How many
/// channels it took; nothing where it took neither. Main thread.
std::optional<std::size_t> negotiateFormat(platform::AUAudioUnit& unit, double sampleRate);

} // namespace orvane::plugins
