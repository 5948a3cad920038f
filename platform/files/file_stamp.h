#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace orvane::platform {

/// Identifies a state of a file, to detect changes. A plain value.
struct FileStamp {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;
    /// The time of the last change, in ns.
    std::int64_t changed = 0;

    bool operator==(const FileStamp&) const = default;
};

/// The current stamp of a file; absent if it does not exist. Any thread except audio threads.
std::optional<FileStamp> stampOf(const std::filesystem::path& path);

/// Whether a file exists and its permissions keep this user, or its owner, from writing to it. Any thread
/// except audio threads.
bool isWriteProtected(const std::filesystem::path& path);

} // namespace orvane::platform
