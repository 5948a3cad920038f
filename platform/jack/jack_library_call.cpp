#include "platform/jack/jack_library_call.h"

#include <unistd.h>

namespace orvane::platform::jack {

namespace {

thread_local volatile std::sig_atomic_t hasBroken = 0;

sigset_t setOf(int signal) {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, signal);
    return signals;
}

/// Interrupts a read from the server's socket. No other signal of the program has its number.
int breakingSignal() {
    static const int number = [] {
        struct sigaction action {};
        action.sa_handler = [](int) { hasBroken = 1; };
        sigaction(SIGRTMIN + 2, &action, nullptr);
        return SIGRTMIN + 2;
    }();
    return number;
}

/// Sends the signal to the calling thread once a call takes too long, and repeatedly from then on.
std::optional<timer_t> startTimer(const timespec& patience) {
    sigevent event{};
    event.sigev_notify = SIGEV_THREAD_ID;
    event.sigev_signo = breakingSignal();
    event._sigev_un._tid = ::gettid();
    timer_t timer{};
    if (timer_create(CLOCK_MONOTONIC, &event, &timer) != 0) return std::nullopt;
    const itimerspec times{.it_interval = JackLibraryCall::noPatience, .it_value = patience};
    timer_settime(timer, 0, &times, nullptr);
    return timer;
}

} // namespace

JackLibraryCall::JackLibraryCall(std::mutex& libraryMutex, const timespec& patience) : lock(libraryMutex) {
    const sigset_t brokenPipe = setOf(SIGPIPE);
    const sigset_t breaking = setOf(breakingSignal());
    pthread_sigmask(SIG_BLOCK, &brokenPipe, &maskBefore);
    pthread_sigmask(SIG_UNBLOCK, &breaking, nullptr);
    hasBroken = 0;
    timer = startTimer(patience);
}

JackLibraryCall::~JackLibraryCall() {
    if (timer) timer_delete(*timer);
    // A pending signal would be delivered as soon as it is unblocked.
    const sigset_t signals = setOf(SIGPIPE);
    const timespec noTime{};
    while (sigtimedwait(&signals, nullptr, &noTime) > 0) {
    }
    pthread_sigmask(SIG_SETMASK, &maskBefore, nullptr);
}

bool JackLibraryCall::isBrokenOff() const noexcept {
    return hasBroken != 0;
}

} // namespace orvane::platform::jack
