#pragma once

#include <filesystem>
#include <optional>

namespace orvane::platform {

/// The folder for application data: $XDG_DATA_HOME, or .local/share in the user's home. Created if it is
/// missing; absent if that fails. Main thread.
std::optional<std::filesystem::path> applicationSupportDirectory();

/// The folder for configuration: $XDG_CONFIG_HOME, or .config in the user's home; absent without either. It
/// need not exist. Main thread.
std::optional<std::filesystem::path> configurationDirectory();

/// The folder for caches: $XDG_CACHE_HOME, or .cache in the user's home; absent without either. It need not
/// exist. Main thread.
std::optional<std::filesystem::path> cacheDirectory();

/// The folder of the files that come with the program, relative to the program's own location, so that an
/// installed tree can be moved as a whole. Any thread except audio threads.
std::filesystem::path programDataDirectory();

} // namespace orvane::platform
