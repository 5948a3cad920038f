#include "midi/midi_manager.h"
#include "platform/midi_services/system_midi_services.h"
#include "platform/virtual/virtual_midi_driver.h"
#include "support/scripted_midi_services.h"

#include <gmock/gmock.h>

#include <atomic>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

namespace {

using namespace orvane::platform;
using orvane::midi::MIDIDeviceInfo;
using orvane::midi::MIDIManager;
using orvane::midi::NoteMessage;
using orvane::test::ScriptedMIDIServices;
using testing::ElementsAre;
using testing::IsEmpty;

using Bytes = std::vector<std::uint8_t>;

class MIDIManagerTest : public testing::Test {
  protected:
    MIDIManagerTest() {
        services.sources = {{11, 101, "Keys"}, {12, 102, "Pads"}};
        manager->onNoteOn([this](const NoteMessage& note) { notes.push_back(note); });
        manager->onSourcesChanged([this] { ++changes; });
    }

    void receive(const std::vector<Bytes>& packets) {
        std::vector<MIDIPacket> views;
        for (const Bytes& packet : packets)
            views.push_back({packet});
        services.read(views);
    }

    ScriptedMIDIServices services;
    std::vector<NoteMessage> notes;
    int changes = 0;
    std::optional<MIDIManager> manager{std::in_place, services};
};

TEST_F(MIDIManagerTest, ReportsTheNoteOnAtTheStartOfAPacket) {
    const std::tuple<const char*, std::vector<Bytes>, std::vector<NoteMessage>> cases[] = {
        {"note-on", {{0x92, 0x3C, 0x64}}, {{2, 60}}},
        {"the ends of the ranges", {{0x90, 0, 1}, {0x9F, 127, 127}}, {{0, 0}, {15, 127}}},
        {"without velocity", {{0x92, 0x3C, 0x00}}, {}},
        {"note-off", {{0x82, 0x3C, 0x40}}, {}},
        {"other messages", {{0xA0, 60, 1}, {0xB0, 60, 1}, {0xE0, 60, 1}, {0xF2, 60, 1}}, {}},
        {"short packets", {{}, {0x90}, {0xC0, 5}, {0x90, 60}}, {}},
        {"three packets", {{0x90, 1, 1}, {0x91, 2, 1}, {0x92, 3, 1}}, {{0, 1}, {1, 2}, {2, 3}}},
        {"two messages in one packet", {{0x90, 0x3C, 0x64, 0x90, 0x3E, 0x64}}, {{0, 60}}},
        {"running status", {{0x90, 60, 100}, {62, 100}, {62, 100, 64}}, {{0, 60}}},
        {"a clock before, alone or not", {{0xF8}, {0xF8, 0x90, 60, 100}, {0x90, 61, 100}}, {{0, 61}}},
        {"exclusive that looks like a note", {{0xF0, 0x90, 0x3C, 0x64, 0xF7}, {0x3C, 0x64, 0xF7}}, {}},
    };
    manager->start();
    for (const auto& [what, packets, expected] : cases) {
        notes.clear();
        receive(packets);
        EXPECT_EQ(notes, expected) << what;
    }
}

TEST_F(MIDIManagerTest, StartsAndStopsOnceAndReleasesEverything) {
    manager->stop();
    EXPECT_THAT(services.takeCalls(), IsEmpty());
    for (const bool isDestroyed : {false, true}) {
        manager->start();
        manager->start();
        EXPECT_THAT(
            services.takeCalls(),
            ElementsAre(
                "create client ORVANEMIDIClient", "create port ORVANEInput of 1", "connect 11", "connect 12"
            )
        );
        if (isDestroyed)
            manager.reset();
        else
            manager->stop();
        EXPECT_THAT(
            services.takeCalls(),
            ElementsAre("disconnect 11", "disconnect 12", "dispose of port 2", "dispose of client 1")
        );
    }
    services.notify();
    receive({{0x90, 60, 100}});
    EXPECT_THAT(services.takeCalls(), IsEmpty());
    EXPECT_THAT(notes, IsEmpty());
    EXPECT_EQ(changes, 0);
}

TEST_F(MIDIManagerTest, StaysStartedIfAStepFails) {
    services.clientStatus = -1;
    manager->start();
    manager->start();
    EXPECT_THAT(services.takeCalls(), ElementsAre("create client ORVANEMIDIClient"));
    manager->setSelectedSourceID(101);
    EXPECT_THAT(services.takeCalls(), ElementsAre("connect 11"));
    EXPECT_THAT(manager->connectedEndpoints(), IsEmpty()) << "there is no port";
    manager->stop();

    services.clientStatus = noErr;
    services.portStatus = -1;
    manager->start();
    EXPECT_EQ(services.takeCalls().size(), 2U);
    manager->stop();
    EXPECT_THAT(services.takeCalls(), ElementsAre("dispose of client 1"));

    services.portStatus = noErr;
    services.sources[0].connectStatus = -1;
    manager->setSelectedSourceID(std::nullopt);
    EXPECT_THAT(services.takeCalls(), IsEmpty()) << "not started";
    manager->start();
    EXPECT_THAT(manager->connectedEndpoints(), ElementsAre(12U));
}

TEST_F(MIDIManagerTest, ConnectsTheSelectedSourceOrAll) {
    manager->start();
    manager->setSelectedSourceID(102);
    EXPECT_THAT(manager->connectedEndpoints(), ElementsAre(12U));
    services.takeCalls();
    manager->setSelectedSourceID(102);
    EXPECT_THAT(services.takeCalls(), ElementsAre("disconnect 12", "connect 12")) << "also if unchanged";
    manager->setSelectedSourceID(std::nullopt);
    EXPECT_THAT(manager->connectedEndpoints(), ElementsAre(11U, 12U));
    manager->setSelectedSourceID(103);
    EXPECT_THAT(manager->connectedEndpoints(), IsEmpty());

    services.sources.push_back({13, 103, "Pedals"});
    services.sources[0].uniqueID.reset();
    services.notify();
    EXPECT_THAT(manager->connectedEndpoints(), ElementsAre(13U));
    EXPECT_EQ(changes, 1);
    manager->disconnectAllSources();
    EXPECT_THAT(manager->connectedEndpoints(), IsEmpty());
    EXPECT_EQ(manager->selectedSourceID(), 103);
}

TEST_F(MIDIManagerTest, ListsSourcesWithAnIDAndNamesUnnamedOnes) {
    services.sources.push_back({13, std::nullopt, "Without id"});
    services.sources.push_back({14, -104, std::nullopt});
    EXPECT_THAT(
        manager->availableSources(),
        ElementsAre(
            MIDIDeviceInfo{101, "Keys"}, MIDIDeviceInfo{102, "Pads"}, MIDIDeviceInfo{-104, "MIDI Source"}
        )
    );
    services.stringStatus = -1;
    EXPECT_EQ(manager->availableSources().at(0), (MIDIDeviceInfo{101, "MIDI Source"}));
}

TEST(MIDIManagerThreads, SurvivesConcurrentCalls) {
    std::vector<std::unique_ptr<MIDIDriver>> drivers;
    drivers.push_back(std::make_unique<virtual_devices::VirtualMIDIDriver>());
    MIDIDriver& driver = *drivers.front();
    SystemMIDIServices services(std::move(drivers));
    const auto steady = driver.createSource("steady").value();
    std::atomic<int> heard = 0;
    std::atomic<bool> isOver = false;
    std::jthread plugging([&] {
        while (!isOver) {
            const auto source = driver.createSource("passing").value();
            source->send(Bytes{0x90, 60, 100});
        }
    });
    std::jthread playing([&] {
        while (!isOver)
            steady->send(Bytes{0x91, 61, 100});
    });
    for (int round = 0; round < 50; ++round) {
        MIDIManager manager(services);
        manager.onNoteOn([&heard](const NoteMessage&) { ++heard; });
        manager.start();
        const auto sources = manager.availableSources();
        manager.setSelectedSourceID(sources.empty() ? std::nullopt : std::optional(sources.front().id));
        manager.setSelectedSourceID(std::nullopt);
        const int before = heard.load();
        while (heard.load() == before)
            std::this_thread::yield();
        EXPECT_GE(manager.connectedEndpoints().size(), 1U);
    }
    isOver = true;
}

} // namespace
