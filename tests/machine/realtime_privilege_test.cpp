#include "machine/realtime_privilege.h"

#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <optional>
#include <string>
#include <thread>

namespace {

using orvane::machine::realtimeAdvice;

/// The soft limit of the process on real-time priorities, until the end of its life.
class PriorityLimit final {
  public:
    explicit PriorityLimit(rlim_t limit) {
        getrlimit(RLIMIT_RTPRIO, &before);
        const rlimit changed{.rlim_cur = std::min(limit, before.rlim_max), .rlim_max = before.rlim_max};
        EXPECT_EQ(setrlimit(RLIMIT_RTPRIO, &changed), 0);
        value = changed.rlim_cur;
    }
    ~PriorityLimit() { setrlimit(RLIMIT_RTPRIO, &before); }
    PriorityLimit(const PriorityLimit&) = delete;
    PriorityLimit& operator=(const PriorityLimit&) = delete;

    rlim_t value = 0;

  private:
    rlimit before{};
};

struct Lender final : orvane::platform::PriorityLender {
    int lend(pid_t) override { return priority; }
    int obtainable() override { return priority; }
    int priority = 0;
};

/// The advice to a thread that has no privileges; those of the process stay.
std::optional<std::string> adviceWithoutCapabilities(int lentPriority = 0) {
    std::optional<std::string> advice;
    std::thread([&advice, lentPriority] {
        __user_cap_header_struct header{.version = _LINUX_CAPABILITY_VERSION_3, .pid = 0};
        __user_cap_data_struct none[_LINUX_CAPABILITY_U32S_3] = {};
        EXPECT_EQ(syscall(SYS_capset, &header, none), 0);
        Lender lender;
        lender.priority = lentPriority;
        advice = realtimeAdvice(lender);
    }).join();
    return advice;
}

TEST(RealtimeAdvice, IsGivenOnlyWhereNoPriorityIsAllowed) {
    {
        const PriorityLimit limit(0);
        const auto advice = adviceWithoutCapabilities();
        ASSERT_TRUE(advice);
        EXPECT_NE(advice->find("/etc/security/limits.d"), std::string::npos);
        EXPECT_FALSE(adviceWithoutCapabilities(20)) << "though it is lent";
    }
    const PriorityLimit limit(1);
    EXPECT_EQ(adviceWithoutCapabilities().has_value(), limit.value == 0);
}

} // namespace
