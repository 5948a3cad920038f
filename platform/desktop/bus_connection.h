#pragma once

#include "platform/desktop/bus_call.h"

#include <systemd/sd-bus.h>

#include <chrono>
#include <memory>

namespace orvane::platform::desktop {

/// Releases a reference to a message.
struct DropBusMessage {
    void operator()(sd_bus_message* read) const { sd_bus_message_unref(read); }
};
using BusMessage = std::unique_ptr<sd_bus_message, DropBusMessage>;

/// A connection with blocking calls of bounded duration, for threads that cannot continue without the answer.
/// One thread at a time, never an audio thread.
class BusConnection final {
  public:
    /// Connects without waiting for the bus.
    explicit BusConnection(MessageBus kind);

    /// Null if there is no bus.
    [[nodiscard]] sd_bus* get() const { return connection.get(); }

    /// Calls the method and waits for the answer; `types` and `arguments` are those of sd_bus_message_append.
    /// Null if the service refuses, does not exist or does not answer within `patience`.
    template <class... Arguments>
    BusMessage call(
        const BusMethod& method, std::chrono::milliseconds patience, const char* types, Arguments... arguments
    ) {
        reply.reset();
        if (!connection) return nullptr;
        const int status = sd_bus_call_method_async(
            connection.get(), nullptr, method.service, method.path, method.interface, method.member,
            keepReply, this, types, arguments...
        );
        return status < 0 ? nullptr : awaitReply(patience);
    }

  private:
    struct CloseConnection {
        void operator()(sd_bus* ended) const { sd_bus_close_unref(ended); }
    };

    static int keepReply(sd_bus_message* message, void* self, sd_bus_error* error);
    BusMessage awaitReply(std::chrono::milliseconds patience);

    std::unique_ptr<sd_bus, CloseConnection> connection;
    BusMessage reply;
};

} // namespace orvane::platform::desktop
