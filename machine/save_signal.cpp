#include "machine/save_signal.h"

#include <atomic>
#include <csignal>

namespace orvane::machine {

namespace {

// A signal handler has no context argument.
std::atomic<bool> saveSignalCame = false;
static_assert(std::atomic<bool>::is_always_lock_free);

void rememberSave(int /*signal*/) noexcept {
    saveSignalCame = true;
}

} // namespace

void keepSaveSignal() {
    struct sigaction action {};
    action.sa_handler = rememberSave;
    action.sa_flags = SA_RESTART;
    sigaction(SIGUSR1, &action, nullptr);
}

bool takeSaveSignal() noexcept {
    return saveSignalCame.exchange(false);
}

} // namespace orvane::machine
