#pragma once

#include "dsp/realtime.h"

namespace orvane::platform::lv2 {

/// Calls into a plugin. Returns false if the call throws: exceptions must not leave a plugin's code. Any
/// thread, real-time safe if the call is.
template <class Call>
ORVANE_REALTIME bool callPlugin(const Call& call) noexcept {
    try {
        call();
        return true;
    } catch (...) {
        return false;
    }
}

} // namespace orvane::platform::lv2
