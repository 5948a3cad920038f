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
    /// Where what was found is kept for the next scan; nowhere if absent.
    std::optional<std::filesystem::path> cacheFile = {};
    /// Per bundle, and per folder of bundles.
    ChildLimits limits = {};
    /// Ends the scan with what has been found so far.
    std::stop_token stop = {};
};

/// What is installed. A plain value.
struct InstalledEffects {
    /// By maker, name and URI.
    std::vector<InstalledPlugin> plugins;
    /// By plugin, bank, name and URI.
    std::vector<InstalledPreset> presets;
};

/// Finds the effects of all bundles on the search path, and the presets of all plugins. Of a plugin that is
/// installed twice the newer one counts, or the first on the path; of a preset the first. Bundles are read by
/// child processes, one each: one that cannot be read, or does not come to an end, is left out with a line in
/// the log. Any thread, takes its time.
InstalledEffects scanForEffects(std::string_view searchPath, SystemLog& log, const ScanOptions& options = {});

} // namespace orvane::platform::lv2
