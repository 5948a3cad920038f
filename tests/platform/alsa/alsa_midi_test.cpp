#include "platform/alsa/alsa_midi_driver.h"
#include "platform/alsa/event_bytes.h"
#include "platform/alsa/sequencer.h"
#include "support/received_midi.h"
#include "support/wait_for.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <string>
#include <vector>

namespace {

using namespace orvane::platform;
using namespace orvane::platform::alsa;
using namespace orvane::test;
using testing::ElementsAre;
using testing::IsEmpty;

using Bytes = std::vector<std::uint8_t>;

snd_seq_event_t eventOf(snd_seq_event_type_t type, const std::function<void(snd_seq_event_t&)>& set = {}) {
    snd_seq_event_t event{};
    snd_seq_ev_clear(&event);
    event.type = type;
    if (set) set(event);
    return event;
}

snd_seq_event_t
note(snd_seq_event_type_t type, std::uint8_t channel, std::uint8_t key, std::uint8_t velocity) {
    return eventOf(type, [&](snd_seq_event_t& event) {
        event.data.note.channel = channel;
        event.data.note.note = key;
        event.data.note.velocity = velocity;
    });
}

snd_seq_event_t control(snd_seq_event_type_t type, std::uint8_t channel, unsigned parameter, int value) {
    return eventOf(type, [&](snd_seq_event_t& event) {
        event.data.control.channel = channel;
        event.data.control.param = parameter;
        event.data.control.value = value;
    });
}

TEST(AlsaEventBytes, ConvertEveryEventToAMessageWithItsStatusByte) {
    Bytes exclusive(600, 0x11);
    exclusive.front() = 0xF0;
    exclusive.back() = 0xF7;
    const std::tuple<const char*, snd_seq_event_t, Bytes> cases[] = {
        {"note-on", note(SND_SEQ_EVENT_NOTEON, 2, 60, 100), {0x92, 60, 100}},
        {"another with the same status", note(SND_SEQ_EVENT_NOTEON, 2, 62, 1), {0x92, 62, 1}},
        {"note-on without velocity", note(SND_SEQ_EVENT_NOTEON, 15, 0, 0), {0x9F, 0, 0}},
        {"note-off", note(SND_SEQ_EVENT_NOTEOFF, 2, 60, 64), {0x82, 60, 64}},
        {"controller", control(SND_SEQ_EVENT_CONTROLLER, 0, 7, 127), {0xB0, 7, 127}},
        {"program", control(SND_SEQ_EVENT_PGMCHANGE, 1, 0, 5), {0xC1, 5}},
        {"bend", control(SND_SEQ_EVENT_PITCHBEND, 3, 0, 0), {0xE3, 0, 64}},
        {"14-bit parameter",
         control(SND_SEQ_EVENT_NONREGPARAM, 0, 129, 130),
         {0xB0, 99, 1, 0xB0, 98, 1, 0xB0, 6, 1, 0xB0, 38, 2}},
        {"clock", eventOf(SND_SEQ_EVENT_CLOCK), {0xF8}},
        {"exclusive",
         eventOf(
             SND_SEQ_EVENT_SYSEX,
             [&](snd_seq_event_t& event) {
                 snd_seq_ev_set_variable(&event, static_cast<unsigned>(exclusive.size()), exclusive.data());
             }
         ),
         exclusive},
        {"no message", eventOf(SND_SEQ_EVENT_PORT_SUBSCRIBED), {}},
        {"note-on after all", note(SND_SEQ_EVENT_NOTEON, 2, 60, 100), {0x92, 60, 100}},
    };
    EventBytes translator;
    for (const auto& [what, event, expected] : cases) {
        const auto bytes = translator.decode(event);
        EXPECT_EQ(Bytes(bytes.begin(), bytes.end()), expected) << what;
    }
}

TEST(AlsaEventBytes, ConvertAMessageToTheEventThatConvertsBack) {
    EventBytes translator;
    for (const Bytes& message : {Bytes{0x90, 60, 100}, Bytes{0x8F, 1, 0}, Bytes{0xC3, 5}, Bytes{0xF8}}) {
        snd_seq_event_t event{};
        ASSERT_TRUE(translator.encode(message, event));
        const auto bytes = translator.decode(event);
        EXPECT_EQ(Bytes(bytes.begin(), bytes.end()), message);
    }
    for (const Bytes& message : {Bytes{}, Bytes{60, 100}, Bytes{0x90, 60}}) {
        snd_seq_event_t event{};
        EXPECT_FALSE(translator.encode(message, event)) << message.size() << " bytes";
    }
}

TEST(AlsaSequencer, ReadsOnlyItsOwnAddresses) {
    const auto address = parseAddress("128:3");
    ASSERT_TRUE(address);
    EXPECT_EQ(address->client, 128);
    EXPECT_EQ(address->port, 3);
    for (const char* text : {"", "20", "20:", ":0", "256:0", "20:0 ", "a:0", "-1:0"})
        EXPECT_FALSE(parseAddress(text)) << text;
}

TEST(AlsaMIDIDriver, HasNoSourcesAndLogsNothingWithoutAKernelSequencer) {
    if (openSequencer("probe") != nullptr) GTEST_SKIP() << "This kernel has an ALSA sequencer.";
    testing::internal::CaptureStderr();
    {
        AlsaMIDIDriver driver;
        driver.setSourcesListener([] {});
        const auto input = driver.openInput("input", [](MIDIPacketList) {});
        EXPECT_THAT(driver.sources(), IsEmpty());
        EXPECT_NE(input->connect("20:0"), noErr);
        input->disconnect("20:0");
        EXPECT_FALSE(driver.createSource("source"));
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(AlsaMIDIDriver, FollowsASourceThatComesAndGoesOnTheKernelsSequencer) {
    if (openSequencer("probe") == nullptr)
        GTEST_SKIP() << "This kernel has no ALSA sequencer, so nothing of it was tested live.";
    AlsaMIDIDriver driver("ORVANE-test");
    AlsaMIDIDriver other("other-test");
    std::atomic<int> changes = 0;
    driver.setSourcesListener([&] { ++changes; });
    ReceivedMIDI received;
    const auto input = driver.openInput("input", received.receiver());
    const auto find = [&] {
        const auto sources = driver.sources();
        const auto found = std::ranges::find(sources, "other-test keys", &MIDIDriverSource::name);
        return found == sources.end() ? std::string() : found->address;
    };
    EXPECT_EQ(find(), "");
    auto source = other.createSource("keys");
    ASSERT_TRUE(source);
    EXPECT_TRUE(waitFor([&] { return changes.load() > 0 && !find().empty(); }));
    EXPECT_FALSE(source.value()->isConnected());
    ASSERT_EQ(input->connect(find()), noErr);
    EXPECT_TRUE(source.value()->isConnected());
    for (const Bytes& message : {Bytes{0x91, 60, 100}, Bytes{0x91, 62, 100}})
        EXPECT_EQ(source.value()->send(message), noErr);
    EXPECT_THAT(received.waitFor(2), ElementsAre(Bytes{0x91, 60, 100}, Bytes{0x91, 62, 100}));
    input->disconnect(find());
    EXPECT_FALSE(source.value()->isConnected());
    source.value().reset();
    EXPECT_TRUE(waitFor([&] { return find().empty(); }));
}

} // namespace
