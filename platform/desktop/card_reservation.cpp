#include "platform/desktop/card_reservation.h"

#include <fmt/format.h>
#include <poll.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <system_error>
#include <utility>

namespace orvane::platform::desktop {

namespace {

using namespace std::chrono_literals;

constexpr const char* interface = "org.freedesktop.ReserveDevice1";
constexpr const char* properties = "org.freedesktop.DBus.Properties";
constexpr BusMethod requestNameMethod{
    MessageBus::session, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
    "RequestName"};

/// Higher than desktop sound servers, and the same as JACK servers.
constexpr std::int32_t ownPriority = 10;
constexpr const char* applicationName = "ORVANE";
constexpr auto busPatience = 2s;
/// The owner must close the card before it answers.
constexpr auto ownerPatience = 5s;

// Flags and results of RequestName.
constexpr std::uint32_t allowReplacement = 1;
constexpr std::uint32_t replaceExisting = 2;
constexpr std::uint32_t doNotQueue = 4;
constexpr std::uint32_t isOwner = 1;

} // namespace

CardReservation::CardReservation(int card, std::chrono::milliseconds keepNameFor)
    : name(fmt::format("{}.Audio{}", interface, card)),
      path(fmt::format("/org/freedesktop/ReserveDevice1/Audio{}", card)),
      device(fmt::format("hw:{}", card)),
      keepFor(keepNameFor),
      bus(MessageBus::session),
      wakeUp(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (bus.get() != nullptr) sd_bus_add_filter(bus.get(), nullptr, serve, this);
    result = wakeUp.isOpen() ? acquire() : Outcome::noBus;
    if (result != Outcome::reserved) return;
    try {
        thread = std::thread([this] { run(); });
    } catch (const std::system_error&) {
        result = Outcome::noBus;
    }
}

CardReservation::~CardReservation() {
    {
        const std::scoped_lock lock(mutex);
        isEnding = true;
    }
    wake();
    if (thread.joinable()) thread.join();
}

CardReservation::Outcome CardReservation::acquire() {
    const std::uint32_t answer = requestName(allowReplacement | doNotQueue);
    if (answer == 0) return Outcome::noBus;
    if (answer == isOwner) return Outcome::reserved;
    int isReleased = 0;
    const BusMethod requestRelease{
        MessageBus::session, name.c_str(), path.c_str(), interface, "RequestRelease"};
    if (const auto reply = bus.call(requestRelease, ownerPatience, "i", ownPriority))
        sd_bus_message_read(reply.get(), "b", &isReleased);
    // No need to replace an owner that has gone in the meantime.
    const std::uint32_t flags = isReleased != 0 ? replaceExisting : 0;
    return requestName(allowReplacement | doNotQueue | flags) == isOwner ? Outcome::reserved
                                                                         : Outcome::refused;
}

/// Returns 0 if no bus answers.
std::uint32_t CardReservation::requestName(std::uint32_t flags) {
    std::uint32_t answer = 0;
    if (const auto reply = bus.call(requestNameMethod, busPatience, "su", name.c_str(), flags))
        sd_bus_message_read(reply.get(), "u", &answer);
    return answer;
}

CardReservations::Lease CardReservation::lease(std::function<void()> onRequest) {
    const std::scoped_lock lock(mutex);
    if (isRequested || isEnding) return nullptr;
    const int id = ++lastLease;
    leases.emplace(id, std::move(onRequest));
    return {&leases, [id, reservation = shared_from_this()](const void*) { reservation->endLease(id); }};
}

void CardReservation::endLease(int id) {
    {
        const std::scoped_lock lock(mutex);
        leases.erase(id);
        idleSince = Clock::now();
    }
    wake();
}

void CardReservation::wake() const {
    eventfd_write(wakeUp.number(), 1);
}

int CardReservation::serve(sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
    auto& reservation = *static_cast<CardReservation*>(self);
    if (sd_bus_message_is_method_call(message, interface, "RequestRelease") > 0)
        return reservation.answerRequest(message);
    if (sd_bus_message_is_method_call(message, properties, "Get") > 0)
        return reservation.answerProperty(message);
    if (sd_bus_message_is_method_call(message, properties, "GetAll") > 0)
        return reservation.answerAllProperties(message);
    // Another program has taken the name without asking.
    const char* lost = nullptr;
    if (sd_bus_message_is_signal(message, "org.freedesktop.DBus", "NameLost") > 0
        && sd_bus_message_read(message, "s", &lost) >= 0 && reservation.name == lost)
        reservation.askForLeases();
    return 0;
}

int CardReservation::answerRequest(sd_bus_message* call) {
    std::int32_t priority = 0;
    if (sd_bus_message_read(call, "i", &priority) < 0) return 0;
    if (priority <= ownPriority || request) return sd_bus_reply_method_return(call, "b", 0);
    // Answered once the card is closed.
    request.reset(sd_bus_message_ref(call));
    askForLeases();
    return 1;
}

void CardReservation::askForLeases() {
    const std::scoped_lock lock(mutex);
    isRequested = true;
    for (const auto& [id, onRequest] : leases)
        if (onRequest) onRequest();
}

int CardReservation::answerProperty(sd_bus_message* call) {
    const char* of = nullptr;
    const char* property = nullptr;
    if (sd_bus_message_read(call, "ss", &of, &property) < 0) return 0;
    if (property == std::string_view("Priority"))
        return sd_bus_reply_method_return(call, "v", "i", ownPriority);
    if (property == std::string_view("ApplicationName"))
        return sd_bus_reply_method_return(call, "v", "s", applicationName);
    if (property == std::string_view("ApplicationDeviceName"))
        return sd_bus_reply_method_return(call, "v", "s", device.c_str());
    return 0;
}

int CardReservation::answerAllProperties(sd_bus_message* call) {
    return sd_bus_reply_method_return(
        call, "a{sv}", 3, "Priority", "i", ownPriority, "ApplicationName", "s", applicationName,
        "ApplicationDeviceName", "s", device.c_str()
    );
}

void CardReservation::run() {
    bool isConnected = true;
    while (!isOver()) {
        int status = 0;
        while (isConnected && (status = sd_bus_process(bus.get(), nullptr)) > 0) {
        }
        isConnected = isConnected && status >= 0;
        if (!isOver()) wait(isConnected);
    }
    if (request) sd_bus_reply_method_return(request.get(), "b", 1);
    request.reset();
    sd_bus_flush(bus.get());
    sd_bus_close(bus.get());
}

/// Whether the name must be given up; no further lease is granted then.
bool CardReservation::isOver() {
    const std::scoped_lock lock(mutex);
    const bool hasBeenUsed = lastLease > 0;
    isEnding =
        isEnding || (hasBeenUsed && leases.empty() && (isRequested || Clock::now() >= idleSince + keepFor));
    return isEnding;
}

/// Waits for the bus, the end of a lease, or the time until which the name is kept.
void CardReservation::wait(bool isConnected) {
    int timeoutMs = -1;
    {
        const std::scoped_lock lock(mutex);
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(idleSince + keepFor - Clock::now());
        if (leases.empty() && lastLease > 0) timeoutMs = static_cast<int>(std::max(left, 0ms).count());
    }
    std::array<pollfd, 2> sources{
        pollfd{wakeUp.number(), POLLIN, 0}, pollfd{
                                                isConnected ? sd_bus_get_fd(bus.get()) : -1,
                                                static_cast<short>(sd_bus_get_events(bus.get())), 0}};
    ::poll(sources.data(), sources.size(), timeoutMs);
    eventfd_t ignored = 0;
    eventfd_read(wakeUp.number(), &ignored);
}

} // namespace orvane::platform::desktop
