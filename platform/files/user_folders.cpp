#include "platform/files/user_folders.h"

#include <cstdlib>
#include <system_error>

namespace orvane::platform {

namespace {

/// The absolute path in an environment variable; relative paths must be ignored.
std::optional<std::filesystem::path> pathInEnvironment(const char* name) {
    const char* const value = std::getenv(name);
    if (value == nullptr || !std::filesystem::path(value).is_absolute()) return std::nullopt;
    return value;
}

/// The folder in a variable, or else the one below the user's home.
std::optional<std::filesystem::path> userFolder(const char* variable, const char* belowHome) {
    if (auto configured = pathInEnvironment(variable)) return configured;
    if (const auto home = pathInEnvironment("HOME")) return *home / belowHome;
    return std::nullopt;
}

} // namespace

std::optional<std::filesystem::path> applicationSupportDirectory() {
    auto directory = userFolder("XDG_DATA_HOME", ".local/share");
    if (!directory) return std::nullopt;
    std::error_code failure;
    std::filesystem::create_directories(*directory, failure);
    if (!std::filesystem::is_directory(*directory, failure)) return std::nullopt;
    return directory;
}

std::optional<std::filesystem::path> configurationDirectory() {
    return userFolder("XDG_CONFIG_HOME", ".config");
}

std::optional<std::filesystem::path> cacheDirectory() {
    return userFolder("XDG_CACHE_HOME", ".cache");
}

std::filesystem::path programDataDirectory() {
    std::error_code ignored;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", ignored);
    return (program.parent_path() / ORVANE_DATA_FROM_PROGRAMS).lexically_normal();
}

} // namespace orvane::platform
