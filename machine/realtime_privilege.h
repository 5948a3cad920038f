#pragma once

#include "platform/base/realtime_priority.h"

#include <optional>
#include <string>

namespace orvane::machine {

/// What to do so that audio threads can have real-time priority, as one sentence; absent if they can, or if
/// `lender` grants it. A sound server may still have priority for its own threads. Any thread but the audio
/// ones.
std::optional<std::string> realtimeAdvice(platform::PriorityLender& lender);

} // namespace orvane::machine
