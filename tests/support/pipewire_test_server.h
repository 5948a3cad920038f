#pragma once

#include "support/temporary_folder.h"

#include <sys/types.h>

#include <string>

namespace orvane::test {

/// A PipeWire server for one test, without hardware, session manager and message bus. It has "loop", a device
/// of four channels whose outputs return to its inputs, and "card_out" and "card_in" with two channels each.
/// Selects itself for libpipewire until it ends.
class PipeWireTestServer final {
  public:
    /// Starts the server and waits until clients can connect; throws if that fails.
    PipeWireTestServer();
    ~PipeWireTestServer();
    PipeWireTestServer(const PipeWireTestServer&) = delete;
    PipeWireTestServer& operator=(const PipeWireTestServer&) = delete;

    /// Kills the server's process.
    void kill();
    void restart();

    /// Removes "loop" and makes it again.
    void unplug() const;
    void plug() const;

    /// Sets "clock.force-quantum" or "clock.force-rate" for the whole server.
    void set(const std::string& setting, unsigned value) const;

  private:
    TemporaryFolder folder{memoryFolder()};
    std::string configuration;
    pid_t process = -1;
};

} // namespace orvane::test
