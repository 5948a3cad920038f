#pragma once

#include "dsp/realtime.h"

namespace orvane::platform::lv2 {

/// Calls into a plugin. Its code is not ours, and an exception that comes out of it ends here; false where
/// one did. Any thread, real-time safe where the call is.
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
