#include "platform/lv2/state_paths.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

namespace orvane::platform::lv2 {

namespace {

/// Why a plugin may not open the file, as the end of a sentence; null if it may.
const char* whyRefused(const std::string& path) {
    if (!path.starts_with('/')) return "is not an absolute path";
    struct stat file = {};
    if (::stat(path.c_str(), &file) != 0) return "cannot be found";
    if (!S_ISREG(file.st_mode)) return "is not a regular file";
    if (::faccessat(AT_FDCWD, path.c_str(), R_OK, AT_EACCESS) != 0) return "you may not read";
    return nullptr;
}

char* abstractPath(LV2_State_Map_Path_Handle, const char* absolutePath) {
    return ::strdup(absolutePath);
}

char* absolutePath(LV2_State_Map_Path_Handle paths, const char* path) try {
    return ::strdup(static_cast<StatePaths*>(paths)->permits(path) ? path : "");
} catch (const std::bad_alloc&) {
    return nullptr;
}

void freeMappedPath(LV2_State_Free_Path_Handle, char* path) {
    std::free(path);
}

} // namespace

StatePaths::StatePaths(std::string pluginName)
    : name(std::move(pluginName)),
      mapPath{this, abstractPath, absolutePath},
      freePath{nullptr, freeMappedPath} {}

std::array<LV2_Feature, 2> StatePaths::features() {
    return {{{LV2_STATE__mapPath, &mapPath}, {LV2_STATE__freePath, &freePath}}};
}

bool StatePaths::permits(const std::string& path) {
    const char* const reason = path.empty() ? nullptr : whyRefused(path);
    if (reason == nullptr) return true;
    const std::scoped_lock lock(mutex);
    if (!refusal)
        refusal = Error{fmt::format(
            "\"{}\" is without its file \"{}\", which {}; choose the file again in the effect's editor.",
            name, path, reason
        )};
    return false;
}

std::optional<Error> StatePaths::takeRefusal() {
    const std::scoped_lock lock(mutex);
    return std::exchange(refusal, std::nullopt);
}

} // namespace orvane::platform::lv2
