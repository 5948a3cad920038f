#include "platform/desktop/bus_call.h"

#include <fmt/format.h>

#include <chrono>
#include <system_error>
#include <utility>

namespace orvane::platform::desktop {

namespace {

using namespace std::chrono_literals;

constexpr auto stepInterval = 20ms;
constexpr auto patience = 10s;
/// More than a call needs, and few enough to keep the main thread responsive.
constexpr int mostMessagesAStep = 16;

} // namespace

BusCall::BusCall(MainThread& mainThread, const BusMethod& called, OnAnswer answer)
    : method(called), onAnswer(std::move(answer)), stepsLeft(patience / stepInterval) {
    sd_bus* opened = nullptr;
    status = method.bus == MessageBus::system ? sd_bus_open_system(&opened) : sd_bus_open_user(&opened);
    connection.reset(opened);
    timer = mainThread.repeat(stepInterval, [this] { goOn(); });
}

int BusCall::keepReply(sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
    static_cast<BusCall*>(self)->reply.reset(sd_bus_message_ref(message));
    return 1;
}

void BusCall::goOn() {
    for (int messages = 0; messages < mostMessagesAStep && status >= 0 && !reply; ++messages) {
        status = sd_bus_process(connection.get(), nullptr);
        if (status == 0) break;
    }
    if (status >= 0 && !reply && --stepsLeft > 0) return;
    timer.reset();
    const auto answer = std::move(onAnswer);
    const auto result = outcome();
    const auto kept = std::move(reply);
    answer(result);
}

Result<sd_bus_message*, BusFailure> BusCall::outcome() const {
    if (reply) {
        if (!sd_bus_message_is_method_error(reply.get(), nullptr)) return reply.get();
        const sd_bus_error* const error = sd_bus_message_get_error(reply.get());
        const char* const words = error->message != nullptr ? error->message : error->name;
        return BusFailure{
            sd_bus_error_has_name(error, SD_BUS_ERROR_SERVICE_UNKNOWN) == 0,
            fmt::format("{} refuses ({})", method.service, words)};
    }
    if (status >= 0) return BusFailure{true, fmt::format("{} does not answer", method.service)};
    return BusFailure{
        connection != nullptr,
        fmt::format(
            "the {} bus cannot be reached ({})", method.bus == MessageBus::system ? "system" : "session",
            std::generic_category().message(-status)
        )};
}

} // namespace orvane::platform::desktop
