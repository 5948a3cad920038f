#pragma once

#include "platform/base/stop_patience.h"

#include <csignal>
#include <ctime>
#include <mutex>
#include <optional>

namespace orvane::platform::jack {

/// While it lives, the calling thread alone calls libjack, and a write to the socket of a server that has
/// just shut down does not end the program. What a jackd that stands still has not answered after some
/// seconds is broken off and fails. Any thread but libjack's own.
class JackLibraryCall final {
  public:
    /// What a server may take to answer.
    static constexpr timespec usualPatience{.tv_sec = usualStopPatience.count(), .tv_nsec = 0};
    /// The same of one that need not answer any more.
    static constexpr timespec noPatience{.tv_sec = 0, .tv_nsec = 100'000'000};

    explicit JackLibraryCall(std::mutex& libraryMutex, const timespec& patience = usualPatience);
    ~JackLibraryCall();
    JackLibraryCall(const JackLibraryCall&) = delete;
    JackLibraryCall& operator=(const JackLibraryCall&) = delete;

    /// Whether something has been: the client takes what answers come later for those to other questions.
    [[nodiscard]] bool isBrokenOff() const noexcept;

  private:
    std::scoped_lock<std::mutex> lock;
    sigset_t maskBefore{};
    std::optional<timer_t> timer;
};

} // namespace orvane::platform::jack
