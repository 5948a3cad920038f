#include "platform/base/realtime_priority.h"

#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>

#include <algorithm>
#include <thread>

namespace orvane::platform {

int takeRealtimePriority() noexcept {
    rlimit limit{};
    const bool hasLimit = getrlimit(RLIMIT_RTPRIO, &limit) == 0 && limit.rlim_cur > 0;
    const int allowed =
        hasLimit ? static_cast<int>(std::min<rlim_t>(limit.rlim_cur, wantedRealtimePriority)) : 0;
    for (const int priority : {wantedRealtimePriority, allowed}) {
        const sched_param parameters{.sched_priority = priority};
        if (priority > 0 && pthread_setschedparam(pthread_self(), SCHED_FIFO, &parameters) == 0)
            return priority;
    }
    return 0;
}

int realtimePriorityOf(pid_t thread) noexcept {
    sched_param parameters{};
    return thread != 0 && ::sched_getparam(thread, &parameters) == 0 ? parameters.sched_priority : 0;
}

int obtainableRealtimePriority() {
    int priority = 0;
    std::thread([&priority] { priority = takeRealtimePriority(); }).join();
    return priority;
}

} // namespace orvane::platform
