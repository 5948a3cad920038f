#include "machine/signals.h"

#include "machine/forced_end.h"
#include "platform/base/stop_patience.h"

#include <semaphore.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <stop_token>
#include <system_error>

namespace orvane::machine {

namespace {

// A signal handler has no context argument, so these cannot be members of the guard.
std::atomic<bool> signalCame = false;
std::atomic<bool> isUrged = false;
std::atomic<bool> saveSignalCame = false;
static_assert(std::atomic<bool>::is_always_lock_free);
/// Posted when a flag changes and when the guard is destroyed.
sem_t news;

void remember(int signal) noexcept {
    if (signalCame.exchange(true) && signal == SIGINT) {
        platform::setStopPatience({});
        isUrged = true;
    }
    sem_post(&news);
}

/// Waits for `news`, for `longest` at most.
void waitForNews(std::chrono::seconds longest) {
    timespec end{};
    clock_gettime(CLOCK_MONOTONIC, &end);
    end.tv_sec += longest.count();
    sem_clockwait(&news, CLOCK_MONOTONIC, &end);
}

/// Ends the process if the guard still exists too long after a signal. `isOver`: the guard is being
/// destroyed.
void watchForTheEnd(const std::stop_token& isOver) {
    using Clock = std::chrono::steady_clock;
    while (!signalCame && !isOver.stop_requested())
        sem_wait(&news);
    auto deadline = Clock::now() + InterruptGuard::patience;
    bool wasUrged = false;
    while (!isOver.stop_requested()) {
        if (!wasUrged && isUrged) {
            wasUrged = true;
            deadline = Clock::now() + InterruptGuard::patienceWhenUrged;
        }
        if (Clock::now() >= deadline) forceEnd(EXIT_FAILURE);
        waitForNews(std::chrono::seconds(1));
    }
}

void rememberSave(int /*signal*/) noexcept {
    saveSignalCame = true;
}

} // namespace

InterruptGuard::InterruptGuard() {
    signalCame = isUrged = false;
    sem_init(&news, 0, 0);
    try {
        watch = std::jthread(watchForTheEnd);
    } catch (const std::system_error&) {
        // Without the thread, a program that hangs must be killed.
    }
    struct sigaction action {};
    action.sa_handler = remember;
    // Restarts interrupted reads and writes; waits still end early, so that the flag is checked soon.
    action.sa_flags = SA_RESTART;
    for (std::size_t i = 0; i < signals.size(); ++i)
        sigaction(signals[i], &action, &before[i]);
    // A program started with nohup must outlive its terminal.
    if (before.back().sa_handler == SIG_IGN) sigaction(signals.back(), &before.back(), nullptr);
}

InterruptGuard::~InterruptGuard() {
    for (std::size_t i = 0; i < signals.size(); ++i)
        sigaction(signals[i], &before[i], nullptr);
    if (!watch.joinable()) return;
    watch.request_stop();
    sem_post(&news);
    watch.join();
}

bool InterruptGuard::isInterrupted() const noexcept {
    return signalCame;
}

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
