#pragma once

#include <pthread.h>

namespace orvane::platform::jack {

/// Wraps `function` as a callback for libjack, which cancels its threads anywhere when a client closes after
/// its server has gone: the thread can only be cancelled outside of `function`. Cancellation unwinds this
/// frame, so it has nothing to clean up and, unlike `function`, is not noexcept. Real-time safe if `function`
/// is.
template <class Result, auto function, class... Arguments>
Result jackCallback(Arguments... arguments) {
    static_assert(noexcept(function(arguments...)));
    int stateBefore = PTHREAD_CANCEL_ENABLE;
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &stateBefore);
    function(arguments...);
    pthread_setcancelstate(stateBefore, nullptr);
    return Result();
}

} // namespace orvane::platform::jack
