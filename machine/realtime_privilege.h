#pragma once

#include "platform/base/realtime_priority.h"

#include <optional>
#include <string>

namespace orvane::machine {

/// What to do so that audio threads may have real-time priority, as one sentence; nothing where they may or
/// `lender` gives it. A sound server may still lend its own threads some. Any thread but the audio ones.
std::optional<std::string> realtimeAdvice(platform::PriorityLender& lender);

} // namespace orvane::machine
