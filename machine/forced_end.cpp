#include "machine/forced_end.h"

#include "machine/process.h"
#include "platform/virtual/output_recorder.h"

#include <cerrno>
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <stop_token>
#include <system_error>

namespace orvane::machine {

void forceEnd(int exitCode) {
    platform::virtual_devices::OutputRecorder::completeAll();
    printMessage(
        program_invocation_short_name,
        "The program was ended because it waited too long for a plugin or a sound server."
    );
    std::_Exit(exitCode);
}

void EndDeadline::arm(int exitCode, std::chrono::seconds longest) try {
    waiter = std::jthread([exitCode, longest](const std::stop_token& isOver) {
        std::mutex mutex;
        std::condition_variable_any over;
        std::unique_lock lock(mutex);
        over.wait_for(lock, isOver, longest, [] { return false; });
        if (!isOver.stop_requested()) forceEnd(exitCode);
    });
} catch (const std::system_error&) {
}

} // namespace orvane::machine
