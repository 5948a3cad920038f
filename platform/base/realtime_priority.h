#pragma once

#include <sys/types.h>

namespace orvane::platform {

/// The real-time priority that audio threads want.
inline constexpr int wantedRealtimePriority = 70;

/// Puts the calling thread before all ordinary ones, at the priority that audio threads want or else the
/// highest one that its user may have; returns that priority, 0 where there is none to be had. For an audio
/// thread's beginning.
int takeRealtimePriority() noexcept;

/// The priority that an audio thread would get now. Any thread but the audio ones.
int obtainableRealtimePriority();

/// Gives real-time priority to threads that may not take it themselves. Any thread but an audio thread; may
/// wait for a service, but not longer than a few seconds.
class PriorityLender {
  public:
    virtual ~PriorityLender() = default;

    /// Returns the priority that the thread of this process, by its kernel id, has from now on; 0 if it is
    /// refused.
    virtual int lend(pid_t thread) = 0;

    /// The priority that `lend` would give; 0 if none.
    virtual int obtainable() = 0;
};

} // namespace orvane::platform
