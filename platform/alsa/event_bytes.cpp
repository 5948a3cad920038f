#include "platform/alsa/event_bytes.h"

#include <new>

namespace orvane::platform::alsa {

EventBytes::EventBytes() {
    snd_midi_event_t* made = nullptr;
    if (snd_midi_event_new(bytes.size(), &made) < 0) throw std::bad_alloc();
    translator.reset(made);
    // Otherwise a second note-on would come without its status byte.
    snd_midi_event_no_status(made, 1);
}

std::span<const std::uint8_t> EventBytes::decode(const snd_seq_event_t& event) {
    if (event.type == SND_SEQ_EVENT_SYSEX)
        return {static_cast<const std::uint8_t*>(event.data.ext.ptr), event.data.ext.len};
    const long length =
        snd_midi_event_decode(translator.get(), bytes.data(), static_cast<long>(bytes.size()), &event);
    return {bytes.data(), length > 0 ? static_cast<std::size_t>(length) : 0};
}

bool EventBytes::encode(std::span<const std::uint8_t> message, snd_seq_event_t& event) {
    snd_seq_ev_clear(&event);
    snd_midi_event_reset_encode(translator.get());
    const auto length = static_cast<long>(message.size());
    return snd_midi_event_encode(translator.get(), message.data(), length, &event) == length
           && event.type != SND_SEQ_EVENT_NONE;
}

} // namespace orvane::platform::alsa
