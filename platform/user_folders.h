#pragma once

#include <filesystem>
#include <optional>

namespace orvane::platform {

/// Where the current user's applications keep their data: $XDG_DATA_HOME, or .local/share in the user's home.
/// Made where it is missing; nothing where there is none and none can be made. Main thread.
std::optional<std::filesystem::path> applicationSupportDirectory();

} // namespace orvane::platform
