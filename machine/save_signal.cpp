#include "machine/save_signal.h"

#include <atomic>

namespace orvane::machine {

namespace {

// A signal handler is given no context, so the flag cannot live in the object.
std::atomic<bool> signalCame = false;
static_assert(std::atomic<bool>::is_always_lock_free);

void remember(int /*signal*/) noexcept {
    signalCame = true;
}

} // namespace

SaveSignal::SaveSignal() {
    signalCame = false;
    struct sigaction action {};
    action.sa_handler = remember;
    action.sa_flags = SA_RESTART;
    sigaction(SIGUSR1, &action, &before);
}

SaveSignal::~SaveSignal() {
    sigaction(SIGUSR1, &before, nullptr);
}

bool SaveSignal::take() const noexcept {
    return signalCame.exchange(false);
}

} // namespace orvane::machine
