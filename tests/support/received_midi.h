#pragma once

#include "platform/midi_services/midi_driver.h"
#include "support/wait_for.h"

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <vector>

namespace orvane::test {

/// Collects packets from any thread. Must outlive the sender.
class ReceivedMIDI final {
  public:
    using Packets = std::vector<std::vector<std::uint8_t>>;

    [[nodiscard]] platform::MIDIDriver::Receiver receiver() {
        return [this](platform::MIDIPacketList list) {
            const std::scoped_lock lock(mutex);
            for (const platform::MIDIPacket& packet : list)
                packets.emplace_back(packet.data.begin(), packet.data.end());
        };
    }

    [[nodiscard]] Packets get() const {
        const std::scoped_lock lock(mutex);
        return packets;
    }

    /// Waits for at least `count` packets and returns all.
    [[nodiscard]] Packets waitFor(std::size_t count) const {
        test::waitFor([&] { return get().size() >= count; });
        return get();
    }

  private:
    mutable std::mutex mutex;
    Packets packets;
};

} // namespace orvane::test
