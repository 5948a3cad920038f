#pragma once

#include "platform/lv2/bundle_report.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::platform::lv2 {

/// Splits a colon-separated list of folders; "~" stands for the home folder.
std::vector<std::filesystem::path> searchFolders(std::string_view searchPath);

/// Returns the bundles in a folder, sorted by name; empty if the folder cannot be read. Blocks on the disk.
std::vector<BundleStamp> bundlesIn(const std::filesystem::path& searchFolder);

/// The search path from the environment, or the customary one.
std::string environmentSearchPath();

/// The user's cache file for scan results; absent if the user has no cache folder.
std::optional<std::filesystem::path> effectCacheFile();

} // namespace orvane::platform::lv2
