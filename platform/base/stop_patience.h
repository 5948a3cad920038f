#pragma once

#include <chrono>

namespace orvane::platform {

/// How long a stop waits by default for a thread or a server in foreign code.
inline constexpr std::chrono::seconds usualStopPatience{5};

/// How long every stop of the process waits before it abandons what does not end. Any thread.
[[nodiscard]] std::chrono::nanoseconds stopPatience() noexcept;

/// Sets that limit, also for stops that are waiting; zero ends them at once. Any thread, also in signal
/// handlers.
void setStopPatience(std::chrono::nanoseconds patience) noexcept;

/// Sleeps between two checks of `waitPatiently`.
void pauseWhileWaiting() noexcept;

/// Waits until `isOver` returns true, for at most `stopPatience`; returns whether it did. Any thread that may
/// sleep.
template <class Condition>
bool waitPatiently(Condition&& isOver) {
    const auto begun = std::chrono::steady_clock::now();
    while (!isOver()) {
        if (std::chrono::steady_clock::now() - begun >= stopPatience()) return isOver();
        pauseWhileWaiting();
    }
    return true;
}

} // namespace orvane::platform
