#include "machine/memory_lock.h"

#include <linux/capability.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace orvane::machine {

namespace {

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

bool lockMemory() {
    return mayLockEverything() && mlockall(MCL_CURRENT | MCL_FUTURE | MCL_ONFAULT) == 0;
}

} // namespace orvane::machine
