#pragma once

#include "platform/base/audio_thread_scope.h"

namespace orvane::test {

/// While it lives, the calling thread counts as an audio thread. In every program that links
/// orvane_test_support, or the guard alone, any allocation or free on an audio thread, those of the I/O
/// cycles included, ends the program with a message. The guard watches malloc and its kin.
using AllocationGuard = platform::AudioThreadScope;

} // namespace orvane::test
