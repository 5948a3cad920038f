#pragma once

#include "platform/base/stop_patience.h"

#include <csignal>
#include <ctime>
#include <mutex>
#include <optional>

namespace orvane::platform::jack {

/// Gives the calling thread exclusive use of libjack while it lives, and keeps a write to the socket of a
/// server that has just shut down from ending the program. A call that a hanging jackd does not answer within
/// some seconds is interrupted and fails. Any thread except libjack's own.
class JackLibraryCall final {
  public:
    /// How long a server may take to answer.
    static constexpr timespec usualPatience{.tv_sec = usualStopPatience.count(), .tv_nsec = 0};
    /// The same for a server that need not answer any more.
    static constexpr timespec noPatience{.tv_sec = 0, .tv_nsec = 100'000'000};

    explicit JackLibraryCall(std::mutex& libraryMutex, const timespec& patience = usualPatience);
    ~JackLibraryCall();
    JackLibraryCall(const JackLibraryCall&) = delete;
    JackLibraryCall& operator=(const JackLibraryCall&) = delete;

    /// Whether a call was interrupted: the client would mistake later answers for those to other questions.
    [[nodiscard]] bool isBrokenOff() const noexcept;

  private:
    std::scoped_lock<std::mutex> lock;
    sigset_t maskBefore{};
    std::optional<timer_t> timer;
};

} // namespace orvane::platform::jack
