#include "platform/desktop/sleep_inhibitor.h"

#include "platform/desktop/bus_call.h"

#include <fcntl.h>

#include <utility>

namespace orvane::platform::desktop {

namespace {

constexpr BusMethod inhibit{
    MessageBus::system, "org.freedesktop.login1", "/org/freedesktop/login1", "org.freedesktop.login1.Manager",
    "Inhibit"};

/// Duplicates the lock's descriptor, because the answer closes its own.
Result<FileDescriptor, BusFailure> lockIn(const Result<sd_bus_message*, BusFailure>& answer) {
    if (!answer) return answer.error();
    int lent = -1;
    if (sd_bus_message_read(answer.value(), "h", &lent) >= 0)
        if (FileDescriptor lock(::fcntl(lent, F_DUPFD_CLOEXEC, 0)); lock.isOpen()) return lock;
    return BusFailure{true, "the login manager's answer contains no lock"};
}

} // namespace

SleepInhibitor::SleepInhibitor(MainThread& thread, SystemLog& systemLog)
    : mainThread(thread), log(systemLog) {}

SleepInhibitor::~SleepInhibitor() = default;

void SleepInhibitor::setHeld(bool isWanted) {
    if (!isWanted) {
        request.reset();
        lock.reset();
    } else if (!request && !lock) {
        ask();
    }
}

void SleepInhibitor::ask() {
    const auto take = [this](const Result<sd_bus_message*, BusFailure>& answer) {
        auto taken = lockIn(answer);
        if (taken)
            lock.emplace(std::move(taken).value());
        else if (!std::exchange(hasComplained, true))
            // A computer without a login manager does not go to sleep on its own.
            log.post(
                taken.error().hasService ? LogLevel::error : LogLevel::standard, "Desktop",
                {"The machine may go to sleep while the mixer runs, because ", taken.error().reason, "."}
            );
        request.reset();
    };
    request = std::make_unique<BusCall>(
        mainThread, inhibit, take, "ssss", "sleep:idle", "ORVANE", "The mixer is running", "block"
    );
}

} // namespace orvane::platform::desktop
