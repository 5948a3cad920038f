#pragma once

#include <pthread.h>

namespace orvane::platform::jack {

/// `function` as a callback for libjack, which cancels its threads wherever they are when a client closes
/// after its server has gone: the thread is only cancelled outside of `function`. That unwinds this frame, so
/// that it has nothing to clean up and, other than `function`, is not noexcept. Real-time safe where
/// `function` is.
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
