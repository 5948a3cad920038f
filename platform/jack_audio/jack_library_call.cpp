#include "platform/jack_audio/jack_library_call.h"

#include <ctime>

namespace orvane::platform {

namespace {

sigset_t brokenPipe() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    return signals;
}

} // namespace

JackLibraryCall::JackLibraryCall(std::mutex& libraryMutex) : lock(libraryMutex) {
    const sigset_t signals = brokenPipe();
    pthread_sigmask(SIG_BLOCK, &signals, &maskBefore);
}

JackLibraryCall::~JackLibraryCall() {
    // A signal that waits would be delivered as soon as it is no longer blocked.
    const sigset_t signals = brokenPipe();
    const timespec noTime{};
    while (sigtimedwait(&signals, nullptr, &noTime) > 0) {
    }
    pthread_sigmask(SIG_SETMASK, &maskBefore, nullptr);
}

} // namespace orvane::platform
