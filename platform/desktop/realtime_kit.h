#pragma once

#include "platform/base/realtime_priority.h"

namespace orvane::platform::desktop {

/// Real-time priority from RealtimeKit, the service that gives it to the programs of a desktop's user. It
/// demands a bound on the time that a real-time thread may compute without a pause: a thread that goes beyond
/// loses its priority, and the program goes on. Any thread but an audio thread; waits for the service for
/// three seconds at most.
class RealtimeKit final : public PriorityLender {
  public:
    int lend(pid_t thread) override;
    int obtainable() override;
};

} // namespace orvane::platform::desktop
