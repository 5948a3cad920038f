#include "machine/interrupt.h"

#include "platform/stop_patience.h"

#include <atomic>
#include <cstddef>

namespace orvane::machine {

namespace {

// A signal handler is given no context, so the flag cannot live in the guard.
std::atomic<bool> signalCame = false;
static_assert(std::atomic<bool>::is_always_lock_free);

void remember(int signal) noexcept {
    if (signalCame.exchange(true) && signal == SIGINT) platform::setStopPatience({});
}

} // namespace

InterruptGuard::InterruptGuard() {
    signalCame = false;
    struct sigaction action {};
    action.sa_handler = remember;
    // Reads and writes that are under way go on; waits still end early, so that the flag is looked at soon.
    action.sa_flags = SA_RESTART;
    for (std::size_t i = 0; i < signals.size(); ++i)
        sigaction(signals[i], &action, &before[i]);
    // Whoever starts a program with nohup wants it to outlive the terminal.
    if (before.back().sa_handler == SIG_IGN) sigaction(signals.back(), &before.back(), nullptr);
}

InterruptGuard::~InterruptGuard() {
    for (std::size_t i = 0; i < signals.size(); ++i)
        sigaction(signals[i], &before[i], nullptr);
}

bool InterruptGuard::isInterrupted() const noexcept {
    return signalCame;
}

} // namespace orvane::machine
