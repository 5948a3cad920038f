#pragma once

#include <sys/types.h>

namespace orvane::platform {

/// The real-time priority for audio threads.
inline constexpr int wantedRealtimePriority = 70;

/// Gives the calling thread real-time priority: `wantedRealtimePriority` or else the highest that its user
/// may have. Returns that priority; 0 if none is available. Called at the start of an audio thread.
int takeRealtimePriority() noexcept;

/// The real-time priority of a thread of this process, by its kernel id; 0 if it has none or the id is 0. Any
/// thread.
int realtimePriorityOf(pid_t thread) noexcept;

/// The priority that an audio thread would get now. Any thread except audio threads.
int obtainableRealtimePriority();

/// Gives real-time priority to threads that may not take it themselves. Any thread except audio threads; may
/// wait for a service for a few seconds.
class PriorityLender {
  public:
    virtual ~PriorityLender() = default;

    /// Gives priority to a thread of this process, by its kernel id, and returns it; 0 if it is refused.
    virtual int lend(pid_t thread) = 0;

    /// The priority that `lend` would give; 0 if none.
    virtual int obtainable() = 0;
};

} // namespace orvane::platform
