#include "support/file_faults.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <optional>

namespace {

struct Plan {
    std::size_t callsLeft;
    int outcome;
    std::size_t faultsLeft;
    bool hasHappened = false;
};

thread_local std::optional<Plan> plan;
thread_local std::optional<std::vector<std::string>> callNames;

/// Whether this call must fail.
bool isFaulty(const char* name) {
    if (callNames) callNames->emplace_back(name);
    if (!plan || plan->faultsLeft == 0) return false;
    if (plan->callsLeft > 0) {
        --plan->callsLeft;
        return false;
    }
    --plan->faultsLeft;
    plan->hasHappened = true;
    return true;
}

/// Kills the process or returns the result of the failed call.
int goWrong() {
    if (plan->outcome == orvane::test::FileFault::kill) ::raise(SIGKILL);
    errno = plan->outcome;
    return -1;
}

template <typename... Arguments>
int call(const char* name, long number, Arguments... arguments) {
    return isFaulty(name) ? goWrong() : static_cast<int>(::syscall(number, arguments...));
}

} // namespace

namespace orvane::test {

FileFault::FileFault(std::size_t call, int outcome, std::size_t howMany) {
    plan = Plan{call, outcome, howMany};
}

FileFault::~FileFault() {
    plan.reset();
}

bool FileFault::hasHappened() const noexcept {
    return plan->hasHappened;
}

FileCalls::FileCalls() {
    callNames.emplace();
}

FileCalls::~FileCalls() {
    callNames.reset();
}

std::vector<std::string> FileCalls::names() const {
    return *callNames;
}

} // namespace orvane::test

// Override the C library's functions for the program and its libraries.
extern "C" {

int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const bool makesFile = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    const int mode = makesFile ? va_arg(rest, int) : 0;
    va_end(rest);
    if ((flags & O_ACCMODE) != O_RDONLY) return call("open", SYS_openat, AT_FDCWD, path, flags, mode);
    return static_cast<int>(::syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

int mkdir(const char* path, mode_t mode) noexcept {
    return call("mkdir", SYS_mkdirat, AT_FDCWD, path, mode);
}

ssize_t write(int file, const void* bytes, size_t count) {
    if (!isFaulty("write")) return ::syscall(SYS_write, file, bytes, count);
    // A killed process may have written a part.
    if (plan->outcome == orvane::test::FileFault::kill) ::syscall(SYS_write, file, bytes, count / 2);
    return goWrong();
}

int fsync(int file) {
    struct stat status {};
    const bool isFolder = ::fstat(file, &status) == 0 && S_ISDIR(status.st_mode);
    return call(isFolder ? "fsync folder" : "fsync file", SYS_fsync, file);
}

int fchmod(int file, mode_t mode) noexcept {
    return call("fchmod", SYS_fchmod, file, mode);
}

int ftruncate(int file, off_t length) noexcept {
    return call("ftruncate", SYS_ftruncate, file, length);
}

int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept {
    return call("linkat", SYS_linkat, fromFolder, from, toFolder, to, flags);
}

int rename(const char* from, const char* to) noexcept {
    return call("rename", SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0U);
}

} // extern "C"
