#include "platform/base/stop_patience.h"

#include <atomic>
#include <cstdint>
#include <thread>

namespace orvane::platform {

namespace {

constexpr std::chrono::milliseconds pause{1};

std::atomic<std::int64_t> patienceNanoseconds = std::chrono::nanoseconds(usualStopPatience).count();
static_assert(std::atomic<std::int64_t>::is_always_lock_free);

} // namespace

std::chrono::nanoseconds stopPatience() noexcept {
    return std::chrono::nanoseconds(patienceNanoseconds.load());
}

void setStopPatience(std::chrono::nanoseconds patience) noexcept {
    patienceNanoseconds.store(patience.count());
}

void pauseWhileWaiting() noexcept {
    std::this_thread::sleep_for(pause);
}

} // namespace orvane::platform
