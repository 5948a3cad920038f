#pragma once

#include "dsp/realtime.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <climits>
#include <cstdint>

namespace orvane::platform {

/// Sleeps while `word` equals `value`, until a wake-up; may return spuriously. Any thread that may sleep.
inline void futexWait(std::atomic<std::uint32_t>& word, std::uint32_t value) noexcept {
    static_assert(sizeof(word) == sizeof(value));
    ::syscall(SYS_futex, &word, FUTEX_WAIT_PRIVATE, value, nullptr, nullptr, 0);
}

/// Wakes all threads that sleep on `word`; never blocks. Any thread, real-time safe.
ORVANE_REALTIME inline void futexWakeAll(std::atomic<std::uint32_t>& word) noexcept {
    ::syscall(SYS_futex, &word, FUTEX_WAKE_PRIVATE, INT_MAX, nullptr, nullptr, 0);
}

} // namespace orvane::platform
