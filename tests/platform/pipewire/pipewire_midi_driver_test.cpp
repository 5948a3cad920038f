#include "midi/midi_manager.h"
#include "platform/midi_services/system_midi_services.h"
#include "platform/pipewire/pipewire_midi_driver.h"
#include "platform/pipewire/pipewire_midi_sources.h"
#include "support/pipewire_test_server.h"
#include "support/wait_for.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

namespace {

using namespace orvane::platform;
using namespace orvane::platform::pipewire;
using orvane::midi::MIDIManager;
using orvane::midi::NoteMessage;
using orvane::test::PipeWireTestServer;
using orvane::test::waitFor;

TEST(PipeWireMIDISources, AreIdentifiedAsTheSequencersIfBridged) {
    PipeWireObjects objects;
    objects.nodes[1].name = "Midi-Bridge";
    objects.nodes[2].name = "synth";
    const auto add = [&objects](ObjectId id, ObjectId node, const char* name, const char* alias) {
        PipeWirePort& port = objects.ports[id];
        port = {
            .serial = 1000U - id,
            .node = node,
            .name = name,
            .alias = alias,
            .format = midiFormat,
            .isOutput = true};
    };
    add(3, 2, "out", "");
    add(4, 1, "USB at bus 1:(capture_1) Keys MIDI 2", "Keys-88:Keys MIDI 2");
    EXPECT_EQ(
        pipeWireMIDISources(objects),
        (std::vector<MIDIDriverSource>{
            {"996", "alsa:Keys88:1", "Keys MIDI 2", true}, {"997", "pipewire:synth:out", "synth:out", false}})
    );
}

TEST(PipeWireMIDIDriver, DeliversNotesOfEverySourceAlsoAfterTheServerHasReturned) {
    PipeWireTestServer server;
    PipeWireGraph graph;
    PipeWireGraph otherGraph("keyboard");
    PipeWireMIDIDriver other(otherGraph);
    std::vector<std::unique_ptr<MIDIDriver>> drivers;
    drivers.push_back(std::make_unique<PipeWireMIDIDriver>(graph));
    SystemMIDIServices services(std::move(drivers));
    std::atomic<int> lastNote = -1;
    MIDIManager manager(services);
    manager.onNoteOn([&](const NoteMessage& message) { lastNote.store(static_cast<int>(message.note)); });
    manager.start();
    for (const bool hasReturned : {false, true}) {
        if (hasReturned) {
            server.kill();
            server.restart();
        }
        const auto first = other.createSource("first");
        const auto second = other.createSource("second");
        ASSERT_TRUE(first && second);
        std::uint8_t note = hasReturned ? 60 : 30;
        for (MIDIOwnSource* const source : {first.value().get(), second.value().get(), first.value().get()}) {
            ++note;
            EXPECT_TRUE(waitFor([&] {
                return source->isConnected()
                       && source->send(std::vector<std::uint8_t>{0x90, note, 0x64}) == noErr
                       && lastNote.load() == note;
            })) << int{note};
        }
    }
}

} // namespace
