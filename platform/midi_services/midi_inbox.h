#pragma once

#include "dsp/realtime.h"
#include "platform/base/system_log.h"
#include "platform/midi_services/midi_driver.h"
#include "platform/midi_services/midi_message_queue.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace orvane::platform {

/// Takes MIDI messages on an audio thread and passes them to a receiver on the thread that calls `deliver`;
/// when that is hundreds of messages behind, further ones are lost and counted.
class MIDIInbox final {
  public:
    /// `system`, a literal, names the sender in the log; `systemLog` may be null.
    MIDIInbox(std::string_view system, MIDIDriver::Receiver inboxReceiver, SystemLog* systemLog);

    /// Audio thread, real-time safe.
    ORVANE_REALTIME void push(std::span<const std::uint8_t> message) noexcept {
        if (!received.push(message)) lost.fetch_add(1);
    }

    /// Counts messages that were lost before they came. Audio thread, real-time safe.
    ORVANE_REALTIME void countLost(std::size_t count) noexcept { lost.fetch_add(count); }

    /// Passes received messages to the receiver, and logs how many were lost since the last call. Any thread,
    /// one at a time.
    void deliver();

  private:
    std::string_view sender;
    MIDIDriver::Receiver receiver;
    SystemLog* log;
    MIDIMessageQueue received;
    std::atomic<std::size_t> lost = 0;
    /// Scratch of `deliver`.
    std::array<MIDIMessageQueue::Piece, 64> batch{};
};

} // namespace orvane::platform
