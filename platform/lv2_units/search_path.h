#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::platform::lv2_units {

/// Every bundle folder in a list of folders that colons separate, "~" standing for the home folder, in the
/// list's order and then by name.
std::vector<std::filesystem::path> bundleFolders(std::string_view searchPath);

/// Where the user's environment says that bundles are, or where they are by custom.
std::string environmentSearchPath();

} // namespace orvane::platform::lv2_units
