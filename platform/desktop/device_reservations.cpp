#include "platform/desktop/device_reservations.h"

#include "platform/desktop/card_reservation.h"

#include <utility>

namespace orvane::platform::desktop {

DeviceReservations::DeviceReservations(std::chrono::milliseconds afterwards) : keepFor(afterwards) {}

DeviceReservations::~DeviceReservations() = default;

CardReservations::Lease DeviceReservations::reserve(int card, std::function<void()> onRequest) {
    const std::scoped_lock lock(mutex);
    std::shared_ptr<CardReservation>& held = reservations[card];
    if (held)
        if (auto lease = held->lease(onRequest)) return lease;
    // Destroys the old one first: two must never coexist.
    held.reset();
    held = std::make_shared<CardReservation>(card, keepFor);
    switch (held->outcome()) {
    case CardReservation::Outcome::reserved:
        return held->lease(std::move(onRequest));
    case CardReservation::Outcome::noBus:
        held.reset();
        return std::make_shared<const int>(card);
    case CardReservation::Outcome::refused:
        break;
    }
    held.reset();
    return nullptr;
}

} // namespace orvane::platform::desktop
