#pragma once

#include <filesystem>
#include <optional>

namespace orvane::platform {

/// Where the current user's applications keep their data: $XDG_DATA_HOME, or .local/share in the user's home.
/// Made where it is missing; nothing where there is none and none can be made. Main thread.
std::optional<std::filesystem::path> applicationSupportDirectory();

/// Where the current user's applications keep their configuration: $XDG_CONFIG_HOME, or .config in the user's
/// home; nothing without either. It need not be there yet. Main thread.
std::optional<std::filesystem::path> configurationDirectory();

/// Where the current user's applications keep what they can make again: $XDG_CACHE_HOME, or .cache in the
/// user's home; nothing without either. It need not be there yet. Main thread.
std::optional<std::filesystem::path> cacheDirectory();

} // namespace orvane::platform
