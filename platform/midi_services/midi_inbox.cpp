#include "platform/midi_services/midi_inbox.h"

#include <string>
#include <tuple>
#include <utility>

namespace orvane::platform {

MIDIInbox::MIDIInbox(std::string_view system, MIDIDriver::Receiver inboxReceiver, SystemLog* systemLog)
    : sender(system), receiver(std::move(inboxReceiver)), log(systemLog) {}

void MIDIInbox::deliver() {
    while (const std::size_t count = received.pop(batch)) {
        std::array<MIDIPacket, std::tuple_size_v<decltype(batch)>> packets;
        for (std::size_t i = 0; i < count; ++i)
            packets[i].data = batch[i].data();
        receiver(MIDIPacketList(packets.data(), count));
    }
    const std::size_t count = lost.exchange(0);
    if (count == 0 || log == nullptr) return;
    log->post(
        LogLevel::error, "MIDI",
        {"More MIDI messages came from ", sender, " than there is room for; ", std::to_string(count),
         " are lost."}
    );
}

} // namespace orvane::platform
