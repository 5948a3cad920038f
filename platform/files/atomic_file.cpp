#include "platform/files/atomic_file.h"

#include "platform/base/uuid.h"
#include "platform/files/file_error.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <optional>
#include <string>
#include <utility>

namespace orvane::platform {

namespace {

constexpr std::string_view cannotWrite = "could not be written";
constexpr int longestLinkChain = 40;
constexpr mode_t newFileMode = 0666;
constexpr mode_t ownerOnlyMode = 0600;
constexpr mode_t permissionBits = 0777;

std::filesystem::path folderOf(const std::filesystem::path& file) {
    const std::filesystem::path folder = file.parent_path();
    return folder.empty() ? "." : folder;
}

/// Whether another user put the link into a world-writable folder, such as /tmp, where it could be a trap.
bool isForeign(const std::filesystem::path& link) {
    struct stat status {};
    struct stat folder {};
    return ::lstat(link.c_str(), &status) == 0 && ::stat(folderOf(link).c_str(), &folder) == 0
           && (folder.st_mode & S_ISVTX) != 0 && status.st_uid != ::geteuid();
}

/// Resolves links by hand, because the usual functions fail on a link to a file that does not exist yet.
Result<std::filesystem::path> linkTarget(const std::filesystem::path& path) {
    std::filesystem::path target = path;
    for (int step = 0; step < longestLinkChain; ++step) {
        std::error_code failure;
        const auto next = std::filesystem::read_symlink(target, failure);
        if (failure) return target;
        if (isForeign(target))
            return fileError(path, cannotWrite, "it is a link that another user put into a shared folder");
        target = target.parent_path() / next;
    }
    return fileError(path, cannotWrite, ELOOP);
}

/// The permissions of the file to be replaced; absent if there is none.
Result<std::optional<mode_t>> permissionsOf(const std::filesystem::path& target) {
    struct stat status {};
    if (::stat(target.c_str(), &status) != 0) {
        if (errno == ENOENT) return std::optional<mode_t>();
        return fileError(target, cannotWrite, errno);
    }
    if (!S_ISREG(status.st_mode)) return fileError(target, cannotWrite, notARegularFile);
    return std::optional(status.st_mode & permissionBits);
}

/// A path to an open file that has no name.
std::string namelessPath(int descriptor) {
    return "/proc/self/fd/" + std::to_string(descriptor);
}

/// Opens a file without a name, which the system removes unless it is named; not open if that is impossible.
FileDescriptor openNameless(const std::filesystem::path& folder, mode_t mode) {
    FileDescriptor opened(::open(folder.c_str(), O_RDWR | O_TMPFILE | O_CLOEXEC, mode));
    if (opened.isOpen() && ::access(namelessPath(opened.number()).c_str(), F_OK) == 0) return opened;
    return FileDescriptor(-1);
}

std::filesystem::path hiddenNameIn(const std::filesystem::path& folder) {
    return folder / (".orvane-" + Uuid::random().toString());
}

/// Does not report failures: the new file already has its name, and some file systems do not support this.
void makeNamesDurable(const std::filesystem::path& folder) {
    const FileDescriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.isOpen()) ::fsync(opened.number());
}

} // namespace

Result<AtomicFile> AtomicFile::open(const std::filesystem::path& target) {
    auto resolved = linkTarget(target);
    if (!resolved) return resolved.error();
    const auto permissions = permissionsOf(resolved.value());
    if (!permissions) return permissions.error();

    const std::filesystem::path folder = folderOf(resolved.value());
    // A file that others may not read must not be readable while it is being written either.
    const mode_t mode = permissions.value() ? ownerOnlyMode : newFileMode;
    FileDescriptor nameless = openNameless(folder, mode);
    auto temporary = nameless.isOpen() ? std::filesystem::path() : hiddenNameIn(folder);
    FileDescriptor opened =
        nameless.isOpen()
            ? std::move(nameless)
            : FileDescriptor(::open(temporary.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode));
    if (!opened.isOpen()) return fileError(resolved.value(), cannotWrite, errno);

    // No allocation may come between creating the file and the object that removes it.
    AtomicFile file(std::move(opened), std::move(temporary), std::move(resolved).value());
    if (permissions.value() && ::fchmod(file.descriptor(), *permissions.value()) != 0)
        return fileError(file.target, cannotWrite, errno);
    return file;
}

AtomicFile::AtomicFile(
    FileDescriptor openedFile, std::filesystem::path temporaryPath, std::filesystem::path targetPath
)
    : file(std::move(openedFile)), temporary(std::move(temporaryPath)), target(std::move(targetPath)) {}

AtomicFile::AtomicFile(AtomicFile&& other) noexcept
    : file(std::move(other.file)),
      temporary(std::exchange(other.temporary, {})),
      target(std::move(other.target)) {}

AtomicFile::~AtomicFile() {
    if (!temporary.empty()) ::unlink(temporary.c_str());
}

Result<Done> AtomicFile::write(std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(file.number(), bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return fileError(target, cannotWrite, errno);
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
    return Done{};
}

Result<Done> AtomicFile::commit() {
    if (::fsync(file.number()) != 0) return fileError(target, cannotWrite, errno);
    const std::filesystem::path folder = folderOf(target);
    if (temporary.empty()) {
        // Only a rename can replace an existing file.
        auto hidden = hiddenNameIn(folder);
        const std::string nameless = namelessPath(file.number());
        if (::linkat(AT_FDCWD, nameless.c_str(), AT_FDCWD, hidden.c_str(), AT_SYMLINK_FOLLOW) != 0)
            return fileError(target, cannotWrite, errno);
        temporary = std::move(hidden);
    }
    if (::rename(temporary.c_str(), target.c_str()) != 0) return fileError(target, cannotWrite, errno);
    temporary.clear();
    makeNamesDurable(folder);
    return Done{};
}

Result<Done> writeFileAtomically(const std::filesystem::path& path, std::span<const std::byte> bytes) {
    auto opened = AtomicFile::open(path);
    if (!opened) return opened.error();
    if (auto written = opened.value().write(bytes); !written) return written;
    return opened.value().commit();
}

} // namespace orvane::platform
