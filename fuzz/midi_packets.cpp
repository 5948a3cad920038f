// From any packets, the manager takes the note-ons that packets begin with, in order, and nothing else.

#include "fuzzer.h"
#include "midi/midi_manager.h"
#include "support/scripted_midi_services.h"

#include <algorithm>
#include <vector>

using namespace orvane;

namespace {

/// Splits bytes into packets, each a length below 16 and its data. Each is allocated separately, so that
/// sanitizers detect overruns.
std::vector<std::vector<std::uint8_t>> packetsIn(std::span<const std::uint8_t> bytes) {
    std::vector<std::vector<std::uint8_t>> packets;
    while (!bytes.empty()) {
        const std::size_t length = std::min<std::size_t>(bytes[0] % 16, bytes.size() - 1);
        const auto content = bytes.subspan(1, length);
        packets.emplace_back(content.begin(), content.end());
        bytes = bytes.subspan(1 + length);
    }
    return packets;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<std::vector<std::uint8_t>> packets = packetsIn({data, size});
    std::vector<platform::MIDIPacket> list;
    std::vector<midi::NoteMessage> expected;
    for (const std::vector<std::uint8_t>& packet : packets) {
        list.push_back({packet});
        if (packet.size() >= 3 && packet[0] >= 0x90 && packet[0] <= 0x9F && packet[2] != 0)
            expected.push_back({packet[0] - 0x90, packet[1]});
    }
    std::vector<midi::NoteMessage> heard;
    test::ScriptedMIDIServices services;
    midi::MIDIManager manager(services);
    manager.onNoteOn([&heard](const midi::NoteMessage& note) { heard.push_back(note); });
    manager.start();
    services.read(list);
    fuzz::require(heard == expected);
    return 0;
}
