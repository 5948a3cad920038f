#include "machine/process.h"
#include "support/server_process.h"

#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <optional>
#include <string>
#include <thread>

namespace {

__user_cap_header_struct header{.version = _LINUX_CAPABILITY_VERSION_3, .pid = 0};

/// Takes all capabilities from the calling thread.
bool dropCapabilities() {
    __user_cap_data_struct none[_LINUX_CAPABILITY_U32S_3] = {};
    return syscall(SYS_capset, &header, none) == 0;
}

/// Sets the process's soft limit on real-time priorities while it exists.
class PriorityLimit final {
  public:
    explicit PriorityLimit(rlim_t limit) {
        getrlimit(RLIMIT_RTPRIO, &before);
        const rlimit changed{.rlim_cur = std::min(limit, before.rlim_max), .rlim_max = before.rlim_max};
        EXPECT_EQ(setrlimit(RLIMIT_RTPRIO, &changed), 0);
        value = changed.rlim_cur;
    }
    ~PriorityLimit() { setrlimit(RLIMIT_RTPRIO, &before); }

    rlim_t value = 0;

  private:
    rlimit before{};
};

struct Lender final : orvane::platform::PriorityLender {
    explicit Lender(int lent) : priority(lent) {}
    int lend(pid_t) override { return priority; }
    int obtainable() override { return priority; }
    int priority;
};

/// The advice on a thread without privileges; the process keeps its own.
std::optional<std::string> adviceWithoutCapabilities(int lentPriority = 0) {
    std::optional<std::string> advice;
    std::thread([&advice, lentPriority] {
        EXPECT_TRUE(dropCapabilities());
        Lender lender(lentPriority);
        advice = orvane::machine::realtimeAdvice(lender);
    }).join();
    return advice;
}

/// The locked memory of this process, in KiB.
std::size_t lockedKiB() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmLck:")) return std::stoul(line.substr(6));
    return 0;
}

/// Whether a child process under a memory limit can still allocate memory, which is locked if and only if it
/// is privileged.
bool locksOnlyWhatIsAllowed(bool hasPrivilege) {
    const auto tryToLock = [hasPrivilege] {
        const rlimit little{.rlim_cur = 1 << 16, .rlim_max = 1 << 16};
        setrlimit(RLIMIT_MEMLOCK, &little);
        if (!hasPrivilege) dropCapabilities();
        const bool locks = orvane::machine::lockMemory();
        constexpr std::size_t plenty = std::size_t{64} << 20;
        void* const memory =
            mmap(nullptr, plenty, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        const bool isLocked = lockedKiB() >= plenty >> 10;
        _exit(memory != MAP_FAILED && locks == hasPrivilege && isLocked == hasPrivilege ? 0 : 1);
    };
    return orvane::test::exitCodeOfChild(tryToLock) == 0;
}

TEST(MemoryLock, LocksMemoryOnlyIfTheAccountMay) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "The sanitizers replace mlockall with a function that does nothing.";
#endif
    EXPECT_TRUE(locksOnlyWhatIsAllowed(false));
    __user_cap_data_struct held[_LINUX_CAPABILITY_U32S_3] = {};
    syscall(SYS_capget, &header, held);
    if ((held[0].effective & CAP_TO_MASK(CAP_IPC_LOCK)) == 0)
        GTEST_SKIP() << "This account may not lock memory.";
    EXPECT_TRUE(locksOnlyWhatIsAllowed(true));
}

TEST(RealtimeAdvice, IsGivenOnlyIfNoPriorityIsAvailable) {
    {
        const PriorityLimit limit(0);
        const auto advice = adviceWithoutCapabilities();
        ASSERT_TRUE(advice);
        EXPECT_NE(advice->find("/etc/security/limits.d"), std::string::npos);
        EXPECT_FALSE(adviceWithoutCapabilities(20)) << "a lender grants priority";
    }
    const PriorityLimit limit(1);
    EXPECT_EQ(adviceWithoutCapabilities().has_value(), limit.value == 0);
}

} // namespace
