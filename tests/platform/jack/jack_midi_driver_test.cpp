#include "midi/midi_manager.h"
#include "platform/jack/jack_midi_driver.h"
#include "platform/midi_services/system_midi_services.h"
#include "support/driver_list.h"
#include "support/jack_midi_peer.h"
#include "support/jack_peer.h"
#include "support/jack_test_server.h"
#include "support/received_midi.h"
#include "support/wait_for.h"

#include <gmock/gmock.h>

#include <atomic>
#include <csignal>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace orvane::platform;
using namespace orvane::platform::jack;
using namespace orvane::test;
using namespace testing;
using orvane::midi::MIDIManager;
using orvane::midi::NoteMessage;

using Message = std::vector<std::uint8_t>;

struct Driver {
    JackClients clients{uniqueJackName("ORVANE")};
    JackMIDIDriver jack{clients};

    [[nodiscard]] std::vector<std::string> addresses() {
        std::vector<std::string> found;
        for (const MIDIDriverSource& source : jack.sources())
            found.push_back(source.address);
        return found;
    }
};

/// Plays until a message arrives: a connection takes effect in one of the next cycles.
bool awaitMessages(JackMIDIPeer& peer, std::size_t port, const ReceivedMIDI& received) {
    const std::size_t before = received.get().size();
    return waitFor([&] { return peer.play({{port, {0xFE}}}) && received.get().size() > before; });
}

/// Removes the active sensing messages with which `awaitMessages` probes the connection.
ReceivedMIDI::Packets withoutSensing(ReceivedMIDI::Packets packets) {
    std::erase(packets, Message{0xFE});
    return packets;
}

TEST(JackMIDIDriver, DeliversMessagesInTheOrderOfTheirFrames) {
    const JackTestServer server({});
    Driver driver;
    JackMIDIPeer peer("keyboard", 2);
    ReceivedMIDI received;
    const auto input = driver.jack.openInput("input", received.receiver());
    ASSERT_THAT(driver.addresses(), ElementsAre(peer.portName(0), peer.portName(1)));
    for (const std::size_t port : {0U, 1U}) {
        ASSERT_EQ(input->connect(peer.portName(port)), noErr);
        ASSERT_TRUE(awaitMessages(peer, port, received));
    }

    Message exclusive(100, 0x11);
    exclusive.front() = 0xF0;
    exclusive.back() = 0xF7;
    const Message withoutStatus{0x3E, 0x64};
    ASSERT_TRUE(peer.play(
        {{0, {0x90, 0x3C, 0x64}},
         {1, {0x92, 0x3C, 0x01}},
         {0, exclusive},
         {1, {0xF8}},
         {0, withoutStatus},
         {1, {0xC0, 0x05}},
         {0, {0x80, 0x3C, 0x40}}}
    ));
    ASSERT_TRUE(waitFor([&] { return received.get().back() == Message{0x80, 0x3C, 0x40}; }));
    const auto piece = [&exclusive](std::ptrdiff_t begin, std::ptrdiff_t end) {
        return Message(exclusive.begin() + begin, exclusive.begin() + end);
    };
    EXPECT_THAT(
        withoutSensing(received.get()),
        ElementsAre(
            Message{0x90, 0x3C, 0x64}, Message{0x92, 0x3C, 0x01}, piece(0, 31), piece(31, 62), piece(62, 93),
            piece(93, 100), Message{0xF8}, withoutStatus, Message{0xC0, 0x05}, Message{0x80, 0x3C, 0x40}
        )
    );
}

// In bursts as large as JACK can carry in one cycle, with a receiver that does not keep up; and in a larger
// one.
TEST(JackMIDIDriver, DeliversOrCountsEveryMessageOfAStorm) {
    const JackTestServer server({.period = 1024});
    std::vector<std::string> lines;
    SystemLog log([&](const LogLine& line) { lines.emplace_back(line.text); });
    JackClients clients{uniqueJackName("ORVANE")};
    JackMIDIDriver driver(clients, &log);
    JackMIDIPeer peer("keyboard", 1);
    ReceivedMIDI received;
    std::atomic<bool> holds = false;
    const auto input = driver.openInput("input", [&, take = received.receiver()](MIDIPacketList packets) {
        while (holds.load())
            std::this_thread::yield();
        take(packets);
    });
    ASSERT_EQ(driver.sources().size(), 1U);
    ASSERT_EQ(input->connect(peer.portName(0)), noErr);
    ASSERT_TRUE(awaitMessages(peer, 0, received));

    const std::vector<JackMIDIPeer::Event> burst(500, {0, {0x90, 0x3C, 0x64}});
    const auto notes = [&] { return withoutSensing(received.get()).size(); };
    for (int cycle = 0; cycle < 5; ++cycle)
        ASSERT_TRUE(peer.play(burst));
    ASSERT_TRUE(waitFor([&] { return notes() == 5 * burst.size(); }));

    holds.store(true);
    constexpr std::size_t heldCycles = 20;
    for (std::size_t cycle = 0; cycle < heldCycles; ++cycle)
        ASSERT_TRUE(peer.play(burst));
    holds.store(false);
    const auto lost = [&] {
        log.flush();
        std::size_t sum = 0;
        for (const std::string& line : lines)
            sum += std::stoul(line.substr(line.find(';') + 2));
        return sum;
    };
    const std::size_t played = (5 + heldCycles) * burst.size();
    EXPECT_TRUE(waitFor([&] { return notes() + lost() == played; }));
    EXPECT_GT(lost(), 0U);
    const std::vector<JackMIDIPeer::Event> flood(100 * burst.size(), burst.front());
    ASSERT_TRUE(peer.play(flood));
    EXPECT_TRUE(waitFor([&] { return notes() + lost() == played + flood.size(); }));
    ASSERT_TRUE(awaitMessages(peer, 0, received)) << "it hears again";
}

TEST(JackMIDIDriver, ReceivesOnlyFromConnectedSources) {
    const JackTestServer server({});
    Driver driver;
    JackMIDIPeer peer("keyboard", 2);
    ReceivedMIDI ofFirst;
    ReceivedMIDI ofBoth;
    const auto first = driver.jack.openInput("first", ofFirst.receiver());
    const auto both = driver.jack.openInput("both", ofBoth.receiver());
    ASSERT_EQ(driver.addresses().size(), 2U);
    EXPECT_EQ(first->connect(peer.portName(0)), noErr);
    EXPECT_EQ(both->connect(peer.portName(0)), noErr);
    EXPECT_EQ(both->connect(peer.portName(1)), noErr);
    EXPECT_EQ(both->connect(peer.portName(1)), noErr) << "connected already";
    EXPECT_EQ(both->connect("nobody:out_1"), kMIDIUnknownEndpoint);
    ASSERT_TRUE(awaitMessages(peer, 0, ofFirst));
    ASSERT_TRUE(awaitMessages(peer, 0, ofBoth));
    ASSERT_TRUE(awaitMessages(peer, 1, ofBoth));

    const Message note{0x90, 0x3C, 0x64};
    ASSERT_TRUE(peer.play({{1, note}}));
    ASSERT_TRUE(waitFor([&] { return ofBoth.get().back() == note; }));
    both->disconnect(peer.portName(0));
    ASSERT_TRUE(waitFor([&] { return peer.listenerCount(0) == 1; }));
    ASSERT_TRUE(peer.play({{0, note}}));
    ASSERT_TRUE(waitFor([&] { return ofFirst.get().back() == note; }));
    ASSERT_TRUE(awaitMessages(peer, 1, ofBoth));
    EXPECT_THAT(withoutSensing(ofFirst.get()), ElementsAre(note));
    EXPECT_THAT(withoutSensing(ofBoth.get()), ElementsAre(note));
}

TEST(JackMIDIDriver, HasNoSourcesAndLogsNothingWithoutAServer) {
    const orvane::test::JackServerName nobody;
    testing::internal::CaptureStderr();
    {
        Driver driver;
        driver.jack.setSourcesListener([] {});
        const auto input = driver.jack.openInput("input", [](MIDIPacketList) {});
        EXPECT_THAT(driver.jack.sources(), IsEmpty());
        EXPECT_EQ(input->connect("system:midi_capture_1"), kMIDIUnknownEndpoint);
        EXPECT_FALSE(driver.jack.createSource("source"));
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

/// A manager over a JACK server, with its notifications.
struct Listening {
    explicit Listening(JackClients& clients)
        : services(listOf<MIDIDriver>(std::make_unique<JackMIDIDriver>(clients))) {
        manager.onNoteOn([this](const NoteMessage& note) { lastNote.store(note.note); });
        manager.onSourcesChanged([this] { ++changes; });
        manager.start();
    }

    [[nodiscard]] bool hears(JackMIDIPeer& peer, std::uint8_t note) {
        return waitFor([&] { return peer.play({{0, {0x90, note, 0x64}}}) && lastNote.load() == note; });
    }

    [[nodiscard]] bool hears(MIDIOwnSource& source, std::uint8_t note) {
        const Message message{0x90, note, 0x64};
        return waitFor([&] { return source.send(message) == noErr && lastNote.load() == note; });
    }

    std::atomic<std::int64_t> lastNote = -1;
    std::atomic<int> changes = 0;
    SystemMIDIServices services;
    MIDIManager manager{services};
};

TEST(JackMIDIDriver, KeepsASelectionWhileSourcesComeAndGo) {
    const JackTestServer server({});
    JackClients clients{uniqueJackName("ORVANE")};
    Listening listening(clients);
    EXPECT_THAT(listening.manager.availableSources(), IsEmpty());

    auto keyboard = std::make_unique<JackMIDIPeer>("keyboard", 1);
    JackMIDIPeer pads("pads", 1);
    ASSERT_TRUE(listening.hears(*keyboard, 1));
    ASSERT_TRUE(listening.hears(pads, 2));
    const auto selected = listening.manager.availableSources().front();
    EXPECT_EQ(selected.name, keyboard->portName(0));
    listening.manager.setSelectedSourceID(selected.id);
    EXPECT_EQ(listening.manager.connectedEndpoints().size(), 1U);

    keyboard.reset();
    ASSERT_TRUE(waitFor([&] { return listening.manager.connectedEndpoints().empty(); }));
    ASSERT_TRUE(pads.play({{0, {0x90, 3, 0x64}}}));
    keyboard = std::make_unique<JackMIDIPeer>("keyboard", 1);
    EXPECT_TRUE(listening.hears(*keyboard, 4));
    EXPECT_THAT(listening.manager.availableSources(), Contains(selected));
    const int changesBefore = listening.changes.load();
    listening.manager.setSelectedSourceID(std::nullopt);
    EXPECT_TRUE(listening.hears(pads, 5));
    EXPECT_EQ(listening.changes.load(), changesBefore) << "connections are no changes";
}

/// The server answers before it accepts clients.
std::unique_ptr<MIDIOwnSource> waitForSource(MIDIDriver& driver, const char* name) {
    std::unique_ptr<MIDIOwnSource> source;
    waitFor([&] {
        if (auto made = driver.createSource(name)) source = std::move(made).value();
        return source != nullptr;
    });
    return source;
}

TEST(JackMIDIDriver, SurvivesItsServerAndFindsTheNextOne) {
    for (const int signal : {SIGTERM, SIGKILL}) {
        JackTestServer server({});
        JackClients clients{uniqueJackName("ORVANE")};
        JackMIDIDriver other(clients);
        Listening listening(clients);
        const auto keyboard = other.createSource("keyboard");
        ASSERT_TRUE(keyboard && listening.hears(*keyboard.value(), 1));
        const auto selected = listening.manager.availableSources().front();
        listening.manager.setSelectedSourceID(selected.id);

        server.end(signal);
        EXPECT_TRUE(waitFor([&] { return listening.manager.connectedEndpoints().empty(); }))
            << "signal " << signal;
        EXPECT_THAT(listening.manager.availableSources(), IsEmpty()) << "signal " << signal;
        EXPECT_EQ(keyboard.value()->send(Message{0x90, 0x02, 0x64}), kMIDINoConnection);

        server.restart();
        const auto next = waitForSource(other, "keyboard");
        ASSERT_NE(next, nullptr);
        EXPECT_TRUE(listening.hears(*next, 3)) << "signal " << signal;
        EXPECT_THAT(listening.manager.availableSources(), ElementsAre(selected));
    }
}

} // namespace
