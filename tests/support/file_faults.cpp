#include "support/file_faults.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <optional>

namespace {

struct Plan {
    std::size_t callsLeft;
    int outcome;
    bool hasHappened = false;
};

thread_local std::optional<Plan> plan;

/// Whether this is the call that goes wrong.
bool isFaulty() {
    if (!plan || plan->hasHappened) return false;
    plan->hasHappened = plan->callsLeft == 0;
    if (!plan->hasHappened) --plan->callsLeft;
    return plan->hasHappened;
}

/// Ends the process or gives what the call is to return.
int goWrong() {
    if (plan->outcome == orvane::test::FileFault::kill) ::raise(SIGKILL);
    errno = plan->outcome;
    return -1;
}

template <typename... Arguments>
int call(long number, Arguments... arguments) {
    return isFaulty() ? goWrong() : static_cast<int>(::syscall(number, arguments...));
}

} // namespace

namespace orvane::test {

FileFault::FileFault(std::size_t call, int outcome) {
    plan = Plan{call, outcome};
}

FileFault::~FileFault() {
    plan.reset();
}

bool FileFault::hasHappened() const noexcept {
    return plan->hasHappened;
}

} // namespace orvane::test

// These stand before the C library's own, for the program and for the libraries it uses.
extern "C" {

int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const int mode = (flags & O_CREAT) != 0 ? va_arg(rest, int) : 0;
    va_end(rest);
    if ((flags & O_ACCMODE) != O_RDONLY) return call(SYS_openat, AT_FDCWD, path, flags, mode);
    return static_cast<int>(::syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

int mkdir(const char* path, mode_t mode) noexcept {
    return call(SYS_mkdirat, AT_FDCWD, path, mode);
}

ssize_t write(int file, const void* bytes, size_t count) {
    if (!isFaulty()) return ::syscall(SYS_write, file, bytes, count);
    // A process that is killed may have written a part.
    if (plan->outcome == orvane::test::FileFault::kill) ::syscall(SYS_write, file, bytes, count / 2);
    return goWrong();
}

int fsync(int file) {
    return call(SYS_fsync, file);
}

int fchmod(int file, mode_t mode) noexcept {
    return call(SYS_fchmod, file, mode);
}

int ftruncate(int file, off_t length) noexcept {
    return call(SYS_ftruncate, file, length);
}

int rename(const char* from, const char* to) noexcept {
    return call(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0U);
}

} // extern "C"
