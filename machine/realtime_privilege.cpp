#include "machine/realtime_privilege.h"

namespace orvane::machine {

std::optional<std::string> realtimeAdvice(platform::PriorityLender& lender) {
    if (platform::obtainableRealtimePriority() > 0 || lender.obtainable() > 0) return std::nullopt;
    return "This account may give audio threads no real-time priority, so that the sound may drop out; add "
           "it to "
           "the group audio, allow that group \"rtprio 95\" and \"memlock unlimited\" in "
           "/etc/security/limits.d, and log in again.";
}

} // namespace orvane::machine
