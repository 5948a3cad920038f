#pragma once

#include "platform/audio_unit_host.h"
#include "platform/system_log.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane::platform::lv2_units {

/// An effect that a bundle declares. A plain value.
struct InstalledPlugin {
    AVAudioUnitComponent component;
    std::string uri;
    std::filesystem::path bundle;
    /// The minor and the micro version, the major being the URI.
    std::pair<int, int> version;
};

/// Finds the effects, plugins with audio inputs and outputs, of all bundles on the search path, ordered by
/// maker, name and URI. Of a plugin that is installed twice the newer one counts, or the first on the path.
/// Reads descriptions only; a plugin or bundle that cannot be used is left out with a line in the log. Any
/// thread, takes its time.
std::vector<InstalledPlugin> scanForEffects(std::string_view searchPath, SystemLog& log);

/// The 32-bit FNV-1a hash by which sessions name plugins and makers.
std::uint32_t stableCode(std::string_view text);

} // namespace orvane::platform::lv2_units
