#pragma once

#include <chrono>

namespace orvane::platform {

/// How long a stop waits for a thread or a server that is in foreign code, unless it is told otherwise.
inline constexpr std::chrono::seconds usualStopPatience{5};

/// How long every stop of the process waits at most before it abandons what does not end. Any thread.
[[nodiscard]] std::chrono::nanoseconds stopPatience() noexcept;

/// Replaces the bound, also for stops that are waiting; zero ends them at once. Any thread, signal handlers
/// included.
void setStopPatience(std::chrono::nanoseconds patience) noexcept;

/// Sleeps between two looks of `waitPatiently`.
void pauseWhileWaiting() noexcept;

/// Waits until `isOver` returns true, `stopPatience` at most; returns whether it did. Any thread that may
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
