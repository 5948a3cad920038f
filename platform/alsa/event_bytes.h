#pragma once

#include "platform/alsa/alsa_library.h"

#include <array>
#include <cstdint>
#include <memory>
#include <span>

namespace orvane::platform::alsa {

/// Translates the events of the sequencer to the bytes of MIDI messages and back. One thread at a time.
class EventBytes final {
  public:
    EventBytes();

    /// The message, or the piece of a system exclusive one, always with its status byte where it has one;
    /// empty for events that are none. Valid as long as the event and until the next call.
    std::span<const std::uint8_t> decode(const snd_seq_event_t& event);

    /// The event of one whole message of up to 12 bytes; whether there is one.
    bool encode(std::span<const std::uint8_t> message, snd_seq_event_t& event);

  private:
    /// The longest message of fixed length is a 14-bit parameter's: four controllers.
    std::array<std::uint8_t, 12> bytes{};
    std::unique_ptr<snd_midi_event_t, Release<snd_midi_event_free>> translator;
};

} // namespace orvane::platform::alsa
