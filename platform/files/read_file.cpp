#include "platform/files/read_file.h"

#include "platform/base/file_descriptor.h"
#include "platform/files/file_error.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace orvane::platform {

namespace {
constexpr std::string_view cannotRead = "could not be read";
constexpr std::size_t chunkSize = 1 << 16;
} // namespace

Result<std::string> readFile(const std::filesystem::path& path, std::size_t maximumSize) {
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!file.isOpen()) return fileError(path, cannotRead, errno);
    struct stat status {};
    if (::fstat(file.number(), &status) != 0) return fileError(path, cannotRead, errno);
    if (!S_ISREG(status.st_mode)) return fileError(path, cannotRead, notARegularFile);

    // The size is a hint only: the file may grow, and kernel files report 0.
    std::string content;
    content.reserve(std::min(static_cast<std::size_t>(status.st_size), maximumSize) + chunkSize);
    while (content.size() <= maximumSize) {
        const std::size_t before = content.size();
        content.resize(before + chunkSize);
        const ssize_t readCount = ::read(file.number(), content.data() + before, chunkSize);
        content.resize(before + static_cast<std::size_t>(std::max<ssize_t>(readCount, 0)));
        if (readCount == 0) return content;
        if (readCount < 0 && errno != EINTR) return fileError(path, cannotRead, errno);
    }
    return fileError(path, cannotRead, "it is larger than " + std::to_string(maximumSize) + " bytes");
}

} // namespace orvane::platform
