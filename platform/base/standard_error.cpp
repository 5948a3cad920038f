#include "platform/base/standard_error.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstddef>

namespace orvane::platform {

namespace {

constexpr int patienceMs = 100;
/// The size that a writable pipe accepts without blocking.
constexpr std::size_t longestWrite = PIPE_BUF;

/// Waits for a stuck reader once, not for every line.
bool isTaken() noexcept {
    static std::atomic<bool> isStuck = false;
    pollfd standardError{.fd = STDERR_FILENO, .events = POLLOUT, .revents = 0};
    int ready = 0;
    do
        ready = ::poll(&standardError, 1, isStuck ? 0 : patienceMs);
    while (ready < 0 && errno == EINTR);
    isStuck = ready == 0;
    return ready != 0;
}

} // namespace

void writeToStandardError(std::string_view text) noexcept {
    while (!text.empty() && isTaken()) {
        const ssize_t written = ::write(STDERR_FILENO, text.data(), std::min(text.size(), longestWrite));
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

} // namespace orvane::platform
