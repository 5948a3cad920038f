#include "cli/standard_input.h"

#include "platform/files/file_error.h"

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

namespace orvane::cli {

namespace {

using platform::Done;
using platform::Error;
using platform::FileDescriptor;
using platform::Result;

constexpr const char* inputName = "standard input";
constexpr std::string_view cannotReadInput = "could not be read";
constexpr std::size_t pieceSize = 1U << 16U;
/// How long a stalled writer can delay the check of `isCancelled`, in milliseconds.
constexpr int longestInputWait = 100;

bool isRegularFile(int descriptor) {
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

/// Makes a file that is deleted when it is closed.
Result<FileDescriptor> makeTemporaryFile() {
    std::error_code failure;
    const std::filesystem::path folder = std::filesystem::temp_directory_path(failure);
    std::string name = (folder / "orvane-input-XXXXXX").string();
    FileDescriptor file(failure ? -1 : ::mkostemp(name.data(), O_CLOEXEC));
    if (!file.isOpen()) return platform::fileError(name, "could not be made", errno);
    ::unlink(name.c_str());
    return file;
}

Result<Done> appendTo(const FileDescriptor& file, std::span<const char> bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(file.number(), bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR)
            return platform::fileError(inputName, "could not be kept in the temporary folder", errno);
        if (written > 0) bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
    return Done{};
}

Result<FileDescriptor> readToTheEnd(const std::function<bool()>& isCancelled) {
    auto file = makeTemporaryFile();
    if (!file) return file;
    std::array<char, pieceSize> piece{};
    while (!isCancelled()) {
        pollfd input{.fd = STDIN_FILENO, .events = POLLIN, .revents = 0};
        if (::poll(&input, 1, longestInputWait) <= 0) continue;
        const ssize_t count = ::read(STDIN_FILENO, piece.data(), piece.size());
        if (count == 0) return file;
        if (count < 0 && errno != EINTR && errno != EAGAIN)
            return platform::fileError(inputName, cannotReadInput, errno);
        if (count < 0) continue;
        const auto bytes = std::span(piece).first(static_cast<std::size_t>(count));
        if (auto kept = appendTo(file.value(), bytes); !kept) return kept.error();
    }
    return platform::fileError(inputName, cannotReadInput, "it was interrupted");
}

} // namespace

Result<platform::SoundFileReader>
openSound(const std::filesystem::path& path, const std::function<bool()>& isCancelled) {
    if (path != standardStream) return platform::SoundFileReader::open(path);
    if (::isatty(STDIN_FILENO) == 1)
        return platform::fileError(
            inputName, cannotReadInput, "it is a terminal; redirect it from a sound file"
        );
    auto file = isRegularFile(STDIN_FILENO)
                    ? Result<FileDescriptor>(FileDescriptor(::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)))
                    : readToTheEnd(isCancelled);
    if (!file) return file.error();
    return platform::SoundFileReader::open(std::move(file).value(), inputName);
}

} // namespace orvane::cli
