#pragma once

#include "platform/audio_hardware/card_reservations.h"
#include "platform/base/file_descriptor.h"
#include "platform/desktop/bus_connection.h"

#include <systemd/sd-bus.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace orvane::platform::desktop {

/// Holds the name of one sound card on the session bus, with a thread that answers requests for the card.
/// Owned by `DeviceReservations` and its leases. Any thread except audio threads.
class CardReservation final : public std::enable_shared_from_this<CardReservation> {
  public:
    enum class Outcome { reserved, refused, noBus };

    /// Reserves the card; the name is kept for `keepNameFor` after the last lease.
    CardReservation(int card, std::chrono::milliseconds keepNameFor);
    ~CardReservation();
    CardReservation(const CardReservation&) = delete;
    CardReservation& operator=(const CardReservation&) = delete;

    [[nodiscard]] Outcome outcome() const { return result; }

    /// Another use of the card; null if the name has been given up or is about to be.
    CardReservations::Lease lease(std::function<void()> onRequest);

  private:
    using Clock = std::chrono::steady_clock;

    Outcome acquire();
    [[nodiscard]] std::uint32_t requestName(std::uint32_t flags);

    static int serve(sd_bus_message* message, void* self, sd_bus_error* error);
    int answerRequest(sd_bus_message* call);
    int answerProperty(sd_bus_message* call);
    int answerAllProperties(sd_bus_message* call);
    void askForLeases();

    void run();
    void endLease(int id);
    void wake() const;
    bool isOver();
    void wait(bool isConnected);

    const std::string name;
    const std::string path;
    const std::string device;
    const std::chrono::milliseconds keepFor;
    /// Used by the constructor, then by the thread.
    BusConnection bus;
    FileDescriptor wakeUp;
    Outcome result = Outcome::noBus;

    std::mutex mutex;
    std::map<int, std::function<void()>> leases;
    int lastLease = 0;
    Clock::time_point idleSince = Clock::now();
    /// Whether another program has requested the card.
    bool isRequested = false;
    bool isEnding = false;
    /// The pending request of another program.
    BusMessage request;
    std::thread thread;
};

} // namespace orvane::platform::desktop
