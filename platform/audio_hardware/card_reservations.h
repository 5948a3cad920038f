#pragma once

#include <functional>
#include <memory>

namespace orvane::platform {

/// Agrees with the other programs of the user on which of them has a sound card. Any thread but an audio
/// thread.
class CardReservations {
  public:
    /// Holds a card for as long as it lives.
    using Lease = std::shared_ptr<const void>;

    virtual ~CardReservations() = default;

    /// Reserves the card of that number; asks another program that has it to let go of it, which may take
    /// some seconds. Null if that program refuses. `onRequest` is called, on another thread, when a more
    /// important program asks for the card: it must not wait, and the lease is to be given up soon.
    virtual Lease reserve(int card, std::function<void()> onRequest) = 0;
};

} // namespace orvane::platform
