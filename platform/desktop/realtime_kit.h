#pragma once

#include "platform/base/realtime_priority.h"

namespace orvane::platform::desktop {

/// Gets real-time priority from RealtimeKit, a service for the programs of a desktop's user. The service
/// demands a limit on how long a real-time thread computes without a pause: a thread that exceeds it loses
/// its priority, and the program continues. Any thread except audio threads; waits for the service for at
/// most three seconds.
class RealtimeKit final : public PriorityLender {
  public:
    int lend(pid_t thread) override;
    int obtainable() override;
};

} // namespace orvane::platform::desktop
