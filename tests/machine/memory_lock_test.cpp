#include "machine/memory_lock.h"

#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstddef>
#include <fstream>
#include <string>

namespace {

/// The memory of this process that is locked, in KiB.
std::size_t lockedKiB() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmLck:")) return std::stoul(line.substr(6));
    return 0;
}

/// Whether the account may still use memory, which it locks if and only if that is allowed; in a process of
/// its own.
bool locksOnlyWhatIsAllowed(bool hasPrivilege) {
    const pid_t child = fork();
    if (child == 0) {
        const rlimit little{.rlim_cur = 1 << 16, .rlim_max = 1 << 16};
        setrlimit(RLIMIT_MEMLOCK, &little);
        __user_cap_header_struct header{.version = _LINUX_CAPABILITY_VERSION_3, .pid = 0};
        __user_cap_data_struct none[_LINUX_CAPABILITY_U32S_3] = {};
        if (!hasPrivilege) syscall(SYS_capset, &header, none);
        const bool locks = orvane::machine::lockMemory();
        constexpr std::size_t plenty = std::size_t{64} << 20;
        void* const memory =
            mmap(nullptr, plenty, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        const bool isLocked = lockedKiB() >= plenty >> 10;
        _exit(memory != MAP_FAILED && locks == hasPrivilege && isLocked == hasPrivilege ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

TEST(MemoryLock, LocksWhatTheProgramUsesWhereThatIsAllowed) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "The sanitizers replace mlockall with a function that does nothing.";
#endif
    EXPECT_TRUE(locksOnlyWhatIsAllowed(false));
    __user_cap_header_struct header{.version = _LINUX_CAPABILITY_VERSION_3, .pid = 0};
    __user_cap_data_struct held[_LINUX_CAPABILITY_U32S_3] = {};
    syscall(SYS_capget, &header, held);
    if ((held[0].effective & CAP_TO_MASK(CAP_IPC_LOCK)) == 0)
        GTEST_SKIP() << "This account may not lock memory.";
    EXPECT_TRUE(locksOnlyWhatIsAllowed(true));
}

} // namespace
