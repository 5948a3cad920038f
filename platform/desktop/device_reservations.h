#pragma once

#include "platform/audio_hardware/card_reservations.h"

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>

namespace orvane::platform::desktop {

class CardReservation;

/// Reserves sound cards over the session bus, by names such as org.freedesktop.ReserveDevice1.Audio0, as
/// sound servers do. Without a bus, cards count as reserved. Any thread except audio threads.
class DeviceReservations final : public CardReservations {
  public:
    /// A name is kept for `afterwards` after its last lease, so that no sound server opens the card between
    /// the steps of describing, setting up, opening or restarting a device.
    explicit DeviceReservations(std::chrono::milliseconds afterwards = std::chrono::seconds(2));
    ~DeviceReservations() override;
    DeviceReservations(const DeviceReservations&) = delete;
    DeviceReservations& operator=(const DeviceReservations&) = delete;

    Lease reserve(int card, std::function<void()> onRequest) override;

  private:
    const std::chrono::milliseconds keepFor;
    std::mutex mutex;
    std::map<int, std::shared_ptr<CardReservation>> reservations;
};

} // namespace orvane::platform::desktop
