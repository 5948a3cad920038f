#pragma once

#include "platform/base/file_descriptor.h"
#include "platform/base/result.h"

#include <cstddef>
#include <filesystem>
#include <span>

namespace orvane::platform {

/// A file in the making that takes its final name only once it is whole: until `commit`, and for good if it
/// is never called or fails, a file that had the name before stays as it was. Belongs to whoever writes the
/// content, one thread at a time.
class AtomicFile final {
  public:
    /// Begins an empty file in the target's folder, without a name where the file system can do that, or else
    /// with a hidden one. A target that is a symbolic link stands for what it leads to. Fails if the target
    /// exists and is not a regular file, if the folder cannot be written, or if a link on the way belongs to
    /// another user and stands in a folder such as /tmp, where anybody may have put it.
    static Result<AtomicFile> open(const std::filesystem::path& target);

    /// Removes the file unless it was committed.
    ~AtomicFile();
    AtomicFile(AtomicFile&& other) noexcept;
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// Appends to the content.
    Result<Done> write(std::span<const std::byte> bytes);

    /// Where the content goes: open for reading and writing until this object goes.
    [[nodiscard]] int descriptor() const noexcept { return file.number(); }

    /// Makes the content durable and gives it the target's name, with the permissions of the file it replaces
    /// or, without one, those of any new file. At most once.
    Result<Done> commit();

  private:
    AtomicFile(
        FileDescriptor openedFile, std::filesystem::path temporaryPath, std::filesystem::path targetPath
    );

    FileDescriptor file;
    /// Its hidden name; empty if it has none or has its final one.
    std::filesystem::path temporary;
    std::filesystem::path target;
};

/// Replaces or makes a file with this content through an `AtomicFile`. Any thread but the audio ones.
Result<Done> writeFileAtomically(const std::filesystem::path& path, std::span<const std::byte> bytes);

} // namespace orvane::platform
