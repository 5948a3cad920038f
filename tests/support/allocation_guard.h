#pragma once

#include "platform/base/audio_thread_scope.h"

namespace orvane::test {

/// Marks the calling thread as an audio thread while it lives. In every program that links
/// orvane_test_support or the guard alone, any allocation or free on an audio thread, including I/O cycles,
/// ends the program with a message. The guard covers malloc and its relatives.
using AllocationGuard = platform::AudioThreadScope;

} // namespace orvane::test
