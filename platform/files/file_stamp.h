#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace orvane::platform {

/// What a file is recognised by as the one that was read or written. A plain value.
struct FileStamp {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;
    /// The time of its last change, in ns.
    std::int64_t changed = 0;

    bool operator==(const FileStamp&) const = default;
};

/// The stamp of a file as it is now; absent if there is none. Any thread but the audio ones.
std::optional<FileStamp> stampOf(const std::filesystem::path& path);

/// Whether a file exists and its permissions keep this user, or its owner, from writing to it. Any thread but
/// the audio ones.
bool isWriteProtected(const std::filesystem::path& path);

} // namespace orvane::platform
