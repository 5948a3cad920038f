#pragma once

#include "platform/alsa/alsa_library.h"

#include <array>
#include <cstdint>
#include <memory>
#include <span>

namespace orvane::platform::alsa {

/// Converts sequencer events to the bytes of MIDI messages and back. One thread at a time.
class EventBytes final {
  public:
    EventBytes();

    /// Returns the message, or the piece of a system exclusive one, with its status byte if it has one; empty
    /// if the event is not MIDI. Valid as long as the event and until the next call.
    std::span<const std::uint8_t> decode(const snd_seq_event_t& event);

    /// Makes the event for a whole message of up to 12 bytes; returns whether there is one.
    bool encode(std::span<const std::uint8_t> message, snd_seq_event_t& event);

  private:
    /// The longest message of fixed length sets a 14-bit parameter: four controllers.
    std::array<std::uint8_t, 12> bytes{};
    std::unique_ptr<snd_midi_event_t, Release<snd_midi_event_free>> translator;
};

} // namespace orvane::platform::alsa
