#include "platform/lv2_units/search_path.h"

#include <algorithm>
#include <cstdlib>
#include <system_error>

namespace orvane::platform::lv2_units {

namespace {

constexpr const char* customarySearchPath =
    "~/.lv2:/usr/local/lib/lv2:/usr/lib/lv2:/usr/lib/" ORVANE_MULTIARCH "/lv2";

std::filesystem::path expanded(std::string_view folder) {
    const char* const home = std::getenv("HOME");
    if (!folder.starts_with('~') || home == nullptr) return folder;
    return std::string(home).append(folder.substr(1));
}

} // namespace

std::vector<std::filesystem::path> bundleFolders(std::string_view searchPath) {
    std::vector<std::filesystem::path> folders;
    while (!searchPath.empty()) {
        const std::size_t end = std::min(searchPath.find(':'), searchPath.size());
        const std::filesystem::path parent = expanded(searchPath.substr(0, end));
        searchPath.remove_prefix(std::min(end + 1, searchPath.size()));

        const auto first = static_cast<std::ptrdiff_t>(folders.size());
        std::error_code error;
        for (auto i = std::filesystem::directory_iterator(parent, error);
             !error && i != std::filesystem::directory_iterator(); i.increment(error))
            if (std::error_code ignored; i->is_directory(ignored)) folders.push_back(i->path());
        std::sort(folders.begin() + first, folders.end());
    }
    return folders;
}

std::string environmentSearchPath() {
    const char* const chosen = std::getenv("LV2_PATH");
    return chosen != nullptr && *chosen != '\0' ? chosen : customarySearchPath;
}

} // namespace orvane::platform::lv2_units
