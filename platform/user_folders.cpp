#include "platform/user_folders.h"

#include <cstdlib>
#include <system_error>

namespace orvane::platform {

namespace {

/// The absolute path that a variable of the environment holds; relative ones are to be ignored.
std::optional<std::filesystem::path> pathInEnvironment(const char* name) {
    const char* const value = std::getenv(name);
    if (value == nullptr || !std::filesystem::path(value).is_absolute()) return std::nullopt;
    return value;
}

std::optional<std::filesystem::path> dataHome() {
    if (auto configured = pathInEnvironment("XDG_DATA_HOME")) return configured;
    if (const auto home = pathInEnvironment("HOME")) return *home / ".local" / "share";
    return std::nullopt;
}

} // namespace

std::optional<std::filesystem::path> applicationSupportDirectory() {
    auto directory = dataHome();
    if (!directory) return std::nullopt;
    std::error_code failure;
    std::filesystem::create_directories(*directory, failure);
    if (!std::filesystem::is_directory(*directory, failure)) return std::nullopt;
    return directory;
}

} // namespace orvane::platform
