#pragma once

#include <stdlib.h>

namespace orvane::test {

/// What is neither a bus nor an invitation to start one.
inline constexpr const char* noBus = "disabled:";

/// Where this process and the programs it starts find both message buses from now on, the system's and the
/// session's.
inline void setBusAddress(const char* address) {
    ::setenv("DBUS_SYSTEM_BUS_ADDRESS", address, 1);
    ::setenv("DBUS_SESSION_BUS_ADDRESS", address, 1);
}

} // namespace orvane::test
