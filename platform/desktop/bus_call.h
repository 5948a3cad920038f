#pragma once

#include "platform/base/main_thread.h"
#include "platform/base/result.h"

#include <systemd/sd-bus.h>

#include <functional>
#include <memory>
#include <string>

namespace orvane::platform::desktop {

enum class MessageBus { system, session };

/// What is called, as its service names it. Literals.
struct BusMethod {
    MessageBus bus;
    const char* service;
    const char* path;
    const char* interface;
    const char* member;
};

/// Why a call has not been answered.
struct BusFailure {
    /// False where there is nobody to ask, as on a machine without a desktop.
    bool hasService;
    /// Continues a sentence: "the system bus cannot be reached".
    std::string reason;
};

/// One call of a service over a message bus. Nothing of it ever waits: a timer goes on with it from the
/// connection to the answer, or until it has taken too long. It has a connection of its own, which lasts as
/// long as it does; ending it sooner gives the answer to nobody. Main thread.
class BusCall final {
  public:
    /// Gets the answer, which is gone afterwards, or why there is none. May end the call.
    using OnAnswer = std::function<void(const Result<sd_bus_message*, BusFailure>&)>;

    /// Begins the call; `types` and `arguments` are those of sd_bus_message_append. `answer` is called once,
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
    /// Null until it has come.
    std::unique_ptr<sd_bus_message, DropMessage> reply;
    /// What the last step gave: a negative errno where it failed.
    int status = 0;
    int stepsLeft;
    /// Null once the call has been answered.
    std::unique_ptr<MainThreadTimer> timer;
};

} // namespace orvane::platform::desktop
