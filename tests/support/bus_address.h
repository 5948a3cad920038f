#pragma once

#include <stdlib.h>

namespace orvane::test {

/// An address that neither is a bus nor starts one.
inline constexpr const char* noBus = "disabled:";

/// Sets the address of the system and the session bus for this process and the programs it starts.
inline void setBusAddress(const char* address) {
    ::setenv("DBUS_SYSTEM_BUS_ADDRESS", address, 1);
    ::setenv("DBUS_SESSION_BUS_ADDRESS", address, 1);
}

} // namespace orvane::test
