#include "machine/process.h"

#include "platform/base/abandoned.h"
#include "platform/base/plain_text.h"
#include "platform/base/standard_error.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <linux/capability.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace orvane::machine {

namespace {

/// Opens the descriptors of closed standard streams, so that no file opened later takes one of them and
/// receives the program's output.
void occupyStandardStreams() {
    int descriptor = -1;
    do
        // Read-only, so that writing to it still fails.
        descriptor = ::open("/dev/null", O_RDONLY);
    while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor >= 0) ::close(descriptor);
}

bool isPrivileged() {
    __user_cap_header_struct header{.version = _LINUX_CAPABILITY_VERSION_3, .pid = 0};
    __user_cap_data_struct held[_LINUX_CAPABILITY_U32S_3] = {};
    return syscall(SYS_capget, &header, held) == 0
           && (held[CAP_TO_INDEX(CAP_IPC_LOCK)].effective & CAP_TO_MASK(CAP_IPC_LOCK)) != 0;
}

/// Under a limit, allocations beyond it would fail once all memory is locked.
bool mayLockEverything() {
    rlimit limit{};
    return (getrlimit(RLIMIT_MEMLOCK, &limit) == 0 && limit.rlim_cur == RLIM_INFINITY) || isPrivileged();
}

} // namespace

void prepareProcess() {
    occupyStandardStreams();
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
    const mode_t wanted = ::umask(S_IWOTH);
    ::umask(wanted | S_IWOTH);
}

bool lockMemory() {
    return mayLockEverything() && mlockall(MCL_CURRENT | MCL_FUTURE | MCL_ONFAULT) == 0;
}

std::optional<std::string> realtimeAdvice(platform::PriorityLender& lender) {
    if (platform::obtainableRealtimePriority() > 0 || lender.obtainable() > 0) return std::nullopt;
    return "This account may not give audio threads real-time priority, so the sound may drop out; add it to "
           "the group audio, allow that group \"rtprio 95\" and \"memlock unlimited\" in "
           "/etc/security/limits.d, and log in again.";
}

void printMessage(std::string_view program, std::string_view sentence) {
    std::string text(sentence);
    std::ranges::replace(text, '\n', ' ');
    platform::writeToStandardError(fmt::format("{}: {}\n", program, platform::plainText(text)));
}

void endIfAbandoned(int exitCode) {
    if (!platform::isAnythingAbandoned()) return;
    std::fflush(nullptr);
    std::_Exit(exitCode);
}

} // namespace orvane::machine
