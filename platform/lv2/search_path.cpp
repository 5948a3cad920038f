#include "platform/lv2/search_path.h"

#include "platform/files/user_folders.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <system_error>

namespace orvane::platform::lv2 {

namespace {

constexpr const char* customarySearchPath =
    "~/.lv2:/usr/local/lib/lv2:/usr/lib/lv2:/usr/lib/" ORVANE_MULTIARCH "/lv2";

std::filesystem::path expanded(std::string_view folder) {
    const char* const home = std::getenv("HOME");
    if (!folder.starts_with('~') || home == nullptr) return folder;
    return std::string(home).append(folder.substr(1));
}

std::int64_t timeOf(const std::filesystem::path& path) {
    std::error_code failure;
    const auto time = std::filesystem::last_write_time(path, failure);
    return failure ? 0 : std::int64_t{time.time_since_epoch().count()};
}

/// The time of the last change to the bundle's folder or to a description in it.
std::int64_t lastChange(const std::filesystem::path& bundle) {
    std::int64_t latest = timeOf(bundle);
    std::error_code error;
    for (auto i = std::filesystem::directory_iterator(bundle, error);
         !error && i != std::filesystem::directory_iterator(); i.increment(error))
        if (i->path().extension() == ".ttl") latest = std::max(latest, timeOf(i->path()));
    return latest;
}

} // namespace

std::vector<std::filesystem::path> searchFolders(std::string_view searchPath) {
    std::vector<std::filesystem::path> folders;
    while (!searchPath.empty()) {
        const std::size_t end = std::min(searchPath.find(':'), searchPath.size());
        folders.push_back(expanded(searchPath.substr(0, end)));
        searchPath.remove_prefix(std::min(end + 1, searchPath.size()));
    }
    return folders;
}

std::vector<BundleStamp> bundlesIn(const std::filesystem::path& searchFolder) {
    std::vector<BundleStamp> bundles;
    std::error_code error;
    for (auto i = std::filesystem::directory_iterator(searchFolder, error);
         !error && i != std::filesystem::directory_iterator(); i.increment(error))
        if (std::error_code ignored; i->is_directory(ignored))
            bundles.push_back({i->path(), lastChange(i->path())});
    std::ranges::sort(bundles, {}, &BundleStamp::folder);
    return bundles;
}

std::string environmentSearchPath() {
    const char* const chosen = std::getenv("LV2_PATH");
    return chosen != nullptr && *chosen != '\0' ? chosen : customarySearchPath;
}

std::optional<std::filesystem::path> effectCacheFile() {
    auto folder = cacheDirectory();
    if (folder) *folder /= "orvane/lv2-effects";
    return folder;
}

} // namespace orvane::platform::lv2
