#include "machine/save_signal.h"

#include <atomic>

namespace orvane::machine {

namespace {

// A signal handler is given no context, so the flag cannot live in the object.
std::atomic<bool> saveSignalCame = false;
static_assert(std::atomic<bool>::is_always_lock_free);

void rememberSave(int /*signal*/) noexcept {
    saveSignalCame = true;
}

} // namespace

SaveSignal::SaveSignal() {
    saveSignalCame = false;
    struct sigaction action {};
    action.sa_handler = rememberSave;
    action.sa_flags = SA_RESTART;
    sigaction(SIGUSR1, &action, &before);
}

SaveSignal::~SaveSignal() {
    sigaction(SIGUSR1, &before, nullptr);
}

bool SaveSignal::take() const noexcept {
    return saveSignalCame.exchange(false);
}

} // namespace orvane::machine
