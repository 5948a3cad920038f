#include "platform/files/file_stamp.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace orvane::platform {

namespace {

constexpr std::int64_t stampUnitsPerSecond = 1'000'000'000;

} // namespace

std::optional<FileStamp> stampOf(const std::filesystem::path& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return std::nullopt;
    return FileStamp{
        .device = status.st_dev,
        .inode = status.st_ino,
        .size = status.st_size,
        .changed = status.st_mtim.tv_sec * stampUnitsPerSecond + status.st_mtim.tv_nsec};
}

bool isWriteProtected(const std::filesystem::path& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return false;
    // Root may write to any file, but respects the owner's setting.
    return (status.st_mode & S_IWUSR) == 0 || (::access(path.c_str(), W_OK) != 0 && errno != ENOENT);
}

} // namespace orvane::platform
