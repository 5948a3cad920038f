#pragma once

#include "platform/lv2/bundle_report.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::platform::lv2 {

/// The folders in a list that colons separate, "~" standing for the home folder.
std::vector<std::filesystem::path> searchFolders(std::string_view searchPath);

/// Every bundle in a folder, by name; none if the folder cannot be read. Waits for the disk.
std::vector<BundleStamp> bundlesIn(const std::filesystem::path& searchFolder);

/// Where the user's environment says that bundles are, or where they are by custom.
std::string environmentSearchPath();

/// The file of the user's in which a program keeps what it found in bundles; absent if the user has no folder
/// for it.
std::optional<std::filesystem::path> effectCacheFile();

} // namespace orvane::platform::lv2
