#pragma once

#include "platform/base/system_log.h"
#include "platform/lv2/child_output.h"
#include "platform/lv2/component_scan.h"

#include <filesystem>
#include <optional>
#include <stop_token>
#include <string_view>
#include <vector>

namespace orvane::platform::lv2 {

/// How a search path is scanned.
struct ScanOptions {
    /// Where the results are cached for the next scan; not cached if absent.
    std::optional<std::filesystem::path> cacheFile = {};
    /// For each bundle, and for each folder of bundles.
    ChildLimits limits = {};
    /// Ends the scan early, with what has been found until then.
    std::stop_token stop = {};
};

/// What is installed. A plain value.
struct InstalledEffects {
    /// Sorted by maker, name and URI.
    std::vector<InstalledPlugin> plugins;
    /// Sorted by plugin, bank, name and URI.
    std::vector<InstalledPreset> presets;
};

/// Finds the effects and presets of all bundles on the search path. If a plugin is installed twice, the newer
/// version wins, then the first on the path; of equal presets, the first. Each bundle is read by a child
/// process: one that cannot be read or takes too long is left out, with a line in the log. Any thread; slow.
InstalledEffects scanForEffects(std::string_view searchPath, SystemLog& log, const ScanOptions& options = {});

} // namespace orvane::platform::lv2
