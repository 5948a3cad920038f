#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <ctime>

// Replaces the wall clock in the programs that link it: every second reading is a day later, as if a user set
// the clock back and forth. The monotonic clock is unaffected.

namespace {

std::time_t leap() noexcept {
    static std::atomic<unsigned> readings = 0;
    constexpr std::time_t day = 24 * 60 * 60;
    return readings.fetch_add(1, std::memory_order_relaxed) % 2 == 0 ? 0 : day;
}

} // namespace

extern "C" {

int clock_gettime(clockid_t clock, timespec* now) noexcept {
    const auto result = static_cast<int>(::syscall(SYS_clock_gettime, clock, now));
    if (result == 0 && (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE)) now->tv_sec += leap();
    return result;
}

int gettimeofday(timeval* now, void*) noexcept {
    timespec time{};
    const int result = clock_gettime(CLOCK_REALTIME, &time);
    *now = {time.tv_sec, time.tv_nsec / 1000};
    return result;
}

std::time_t time(std::time_t* now) noexcept {
    timespec time{};
    clock_gettime(CLOCK_REALTIME, &time);
    if (now) *now = time.tv_sec;
    return time.tv_sec;
}

} // extern "C"
