#pragma once

#include "platform/base/file_descriptor.h"
#include "platform/base/result.h"

#include <cstddef>
#include <filesystem>
#include <span>

namespace orvane::platform {

/// A new file that takes its final name only when it is complete. Until `commit`, and for good if that fails
/// or is never called, a file of that name stays as it was. Owned by the writer of the content, one thread at
/// a time.
class AtomicFile final {
  public:
    /// Creates an empty file in the target's folder, without a name if the file system supports that,
    /// otherwise with a hidden one. A symbolic link as target is followed. Fails if the target exists and is
    /// not a regular file, if the folder is not writable, or if a link on the way belongs to another user and
    /// is in a world-writable folder such as /tmp.
    static Result<AtomicFile> open(const std::filesystem::path& target);

    /// Removes the file unless it was committed.
    ~AtomicFile();
    AtomicFile(AtomicFile&& other) noexcept;
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// Appends to the content.
    Result<Done> write(std::span<const std::byte> bytes);

    /// The descriptor of the content: open for reading and writing while this object lives.
    [[nodiscard]] int descriptor() const noexcept { return file.number(); }

    /// Makes the content durable and gives it the target's name, with the permissions of the file it replaces
    /// or those of any new file. Must be called at most once.
    Result<Done> commit();

  private:
    AtomicFile(
        FileDescriptor openedFile, std::filesystem::path temporaryPath, std::filesystem::path targetPath
    );

    FileDescriptor file;
    /// The hidden name; empty if the file has none or its final one.
    std::filesystem::path temporary;
    std::filesystem::path target;
};

/// Creates or replaces a file through an `AtomicFile`. Any thread except audio threads.
Result<Done> writeFileAtomically(const std::filesystem::path& path, std::span<const std::byte> bytes);

} // namespace orvane::platform
