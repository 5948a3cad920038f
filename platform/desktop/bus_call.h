#pragma once

#include "platform/base/main_thread.h"
#include "platform/base/result.h"

#include <systemd/sd-bus.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace orvane::platform::desktop {

enum class MessageBus { system, session };

/// A method, in the terms of its service. String literals.
struct BusMethod {
    MessageBus bus;
    const char* service;
    const char* path;
    const char* interface;
    const char* member;
};

/// Why a call has failed.
struct BusFailure {
    /// False if the service does not exist, as on a computer without a desktop.
    bool hasService;
    /// The end of a sentence, such as "the system bus cannot be reached".
    std::string reason;
};

/// An asynchronous call of a service over a message bus. It never blocks: a timer drives it from connecting
/// to the answer or the timeout. Each call has a connection of its own; destroying it cancels the call
/// without an answer. Main thread.
class BusCall final {
  public:
    /// Receives the answer, valid during the call, or the failure. May destroy the `BusCall`.
    using OnAnswer = std::function<void(const Result<sd_bus_message*, BusFailure>&)>;

    /// Starts the call; `types` and `arguments` are those of sd_bus_message_append. `answer` is called once,
    /// later.
    template <class... Arguments>
    BusCall(
        MainThread& mainThread, const BusMethod& called, OnAnswer answer, const char* types,
        Arguments... arguments
    )
        : BusCall(mainThread, called, std::move(answer)) {
        if (connection)
            status = sd_bus_call_method_async(
                connection.get(), nullptr, called.service, called.path, called.interface, called.member,
                keepReply, this, types, arguments...
            );
    }

    BusCall(const BusCall&) = delete;
    BusCall& operator=(const BusCall&) = delete;

  private:
    BusCall(MainThread& mainThread, const BusMethod& called, OnAnswer answer);

    static int keepReply(sd_bus_message* message, void* self, sd_bus_error* error);
    void goOn();
    [[nodiscard]] Result<sd_bus_message*, BusFailure> outcome() const;

    struct CloseConnection {
        void operator()(sd_bus* ended) const { sd_bus_close_unref(ended); }
    };
    struct DropMessage {
        void operator()(sd_bus_message* read) const { sd_bus_message_unref(read); }
    };

    const BusMethod method;
    OnAnswer onAnswer;
    std::unique_ptr<sd_bus, CloseConnection> connection;
    /// Null until the answer arrives.
    std::unique_ptr<sd_bus_message, DropMessage> reply;
    /// The result of the last step: a negative errno value if it failed.
    int status = 0;
    int stepsLeft;
    /// Null once the call has been answered.
    std::unique_ptr<MainThreadTimer> timer;
};

} // namespace orvane::platform::desktop
