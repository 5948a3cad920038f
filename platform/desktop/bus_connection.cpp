#include "platform/desktop/bus_connection.h"

#include <utility>

namespace orvane::platform::desktop {

using std::chrono::steady_clock;

BusConnection::BusConnection(MessageBus kind) {
    sd_bus* opened = nullptr;
    if (kind == MessageBus::system)
        sd_bus_open_system(&opened);
    else
        sd_bus_open_user(&opened);
    connection.reset(opened);
}

int BusConnection::keepReply(sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
    static_cast<BusConnection*>(self)->reply.reset(sd_bus_message_ref(message));
    return 1;
}

BusMessage BusConnection::awaitReply(std::chrono::milliseconds patience) {
    const auto deadline = steady_clock::now() + patience;
    while (!reply) {
        const int status = sd_bus_process(connection.get(), nullptr);
        if (status < 0) break;
        const auto left =
            std::chrono::duration_cast<std::chrono::microseconds>(deadline - steady_clock::now()).count();
        if (left <= 0) break;
        if (status == 0) sd_bus_wait(connection.get(), static_cast<std::uint64_t>(left));
    }
    if (!reply || sd_bus_message_is_method_error(reply.get(), nullptr) > 0) return nullptr;
    return std::move(reply);
}

} // namespace orvane::platform::desktop
