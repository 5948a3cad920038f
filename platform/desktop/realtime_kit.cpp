#include "platform/desktop/realtime_kit.h"

#include "platform/desktop/bus_connection.h"

#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>

namespace orvane::platform::desktop {

namespace {

using namespace std::chrono_literals;

constexpr const char* service = "org.freedesktop.RealtimeKit1";
constexpr const char* path = "/org/freedesktop/RealtimeKit1";
constexpr BusMethod getProperty{MessageBus::system, service, path, "org.freedesktop.DBus.Properties", "Get"};
constexpr BusMethod makeRealtime{MessageBus::system, service, path, service, "MakeThreadRealtimeWithPID"};
/// The service may have to be started first.
constexpr auto patience = 1s;

/// Reads a property of the service; 0 if that fails.
template <class Number>
Number property(BusConnection& bus, const char* name, const char* type) {
    Number value = 0;
    if (const auto answer = bus.call(getProperty, patience, "ss", service, name))
        sd_bus_message_read(answer.get(), "v", type, &value);
    return value;
}

int highestPriority(BusConnection& bus) {
    return std::max(property<std::int32_t>(bus, "MaxRealtimePriority", "i"), std::int32_t{0});
}

/// The current soft limit in microseconds, for the signal handler.
std::atomic<rlim_t> computingTime = 0;
static_assert(std::atomic<rlim_t>::is_always_lock_free);

/// Runs on the thread that has computed for too long. The kernel has raised the limit; the next one must
/// follow it.
void giveUpPriority(int /*signal*/) {
    const int error = errno;
    const sched_param ordinary{};
    sched_setscheduler(0, SCHED_OTHER | SCHED_RESET_ON_FORK, &ordinary);
    rlimit limit{};
    if (getrlimit(RLIMIT_RTTIME, &limit) == 0) {
        limit.rlim_cur = std::min(computingTime.load(), limit.rlim_max);
        setrlimit(RLIMIT_RTTIME, &limit);
    }
    errno = error;
}

/// Bounds the computing time of real-time threads as the service demands: a signal warns before the hard
/// limit, at which the kernel ends the program.
bool boundComputingTime(std::int64_t most) {
    rlimit limit{};
    if (most <= 0 || getrlimit(RLIMIT_RTTIME, &limit) != 0) return false;
    limit.rlim_max = std::min(limit.rlim_max, static_cast<rlim_t>(most));
    limit.rlim_cur = std::min(limit.rlim_cur, limit.rlim_max / 2);
    computingTime = limit.rlim_cur;
    struct sigaction action = {};
    action.sa_handler = giveUpPriority;
    action.sa_flags = SA_RESTART;
    return sigaction(SIGXCPU, &action, nullptr) == 0 && setrlimit(RLIMIT_RTTIME, &limit) == 0;
}

} // namespace

int RealtimeKit::lend(pid_t thread) {
    BusConnection bus(MessageBus::system);
    const int priority = std::min(highestPriority(bus), wantedRealtimePriority);
    if (priority == 0 || !boundComputingTime(property<std::int64_t>(bus, "RTTimeUSecMax", "x"))) return 0;
    const auto answer = bus.call(
        makeRealtime, patience, "ttu", static_cast<std::uint64_t>(::getpid()),
        static_cast<std::uint64_t>(thread), static_cast<std::uint32_t>(priority)
    );
    return answer ? priority : 0;
}

int RealtimeKit::obtainable() {
    BusConnection bus(MessageBus::system);
    return std::min(highestPriority(bus), wantedRealtimePriority);
}

} // namespace orvane::platform::desktop
