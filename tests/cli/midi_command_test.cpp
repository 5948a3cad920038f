#include "cli/midi_send.h"
#include "engine/session/channel_strip.h"
#include "engine/session/mixer_json_document.h"
#include "platform/jack/jack_midi_driver.h"
#include "support/build_files.h"
#include "support/jack_peer.h"
#include "support/jack_test_server.h"
#include "support/program.h"
#include "support/received_midi.h"
#include "support/wait_for.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <array>
#include <cstdlib>
#include <future>
#include <string>

namespace {

using namespace orvane;
using namespace test;
using cli::parseNote;
using cli::SentNote;
using testing::ElementsAre;
using testing::HasSubstr;

const std::string program = test::builtProgram("orvane-cli");

using MIDICommand = test::ProgramTest;

TEST_F(MIDICommand, ReadsNotes) {
    EXPECT_EQ(parseNote("1:0").value(), (SentNote{0, 0, 100}));
    EXPECT_EQ(parseNote("16:127:1").value(), (SentNote{15, 127, 1}));
    for (const char* text :
         {"", "60", "1:", ":60", "17:60", "0:60", "1:128", "1:60:0", "1:60:128", "1:60:1:1", "1:60:", "-1:60",
          "a:60"})
        EXPECT_THAT(parseNote(text).error().description, HasSubstr("is not a note; write CHANNEL:NOTE"))
            << text;
}

TEST_F(MIDICommand, ListsAndSendsNothingWithoutMIDI) {
    const std::string nowhere = "ORVANE_DRIVERS=virtual " + program + " midi";
    EXPECT_EQ(exitCodeOfShell(nowhere + " --json"), 0);
    EXPECT_EQ(nlohmann::json::parse(output()), nlohmann::json::parse(R"({"sources":[]})"));
    EXPECT_EQ(exitCodeOfShell(nowhere + " --send 1:60"), 1);
    EXPECT_EQ(
        errors(), "orvane-cli: Neither a JACK server nor an ALSA sequencer is running to send the note.\n"
    );
    EXPECT_EQ(exitCodeOfShell(nowhere + " --send 1:200"), 2);
    EXPECT_EQ(exitCodeOfShell(nowhere + " --seconds 3"), 2) << "only with --send";
}

TEST_F(MIDICommand, ListsAndReachesOtherProgramsOnAJACKServer) {
    const test::JackTestServer server({});
    const std::string jack = "ORVANE_DRIVERS=jack,virtual " + program;
    platform::jack::JackClients clients(test::uniqueJackName("other"));
    platform::jack::JackMIDIDriver other(clients);
    test::ReceivedMIDI received;
    const auto input = other.openInput("input", received.receiver());
    const auto keyboard = other.createSource("keys").value();

    ASSERT_EQ(exitCodeOfShell(jack + " midi --json"), 0);
    const auto document = nlohmann::json::parse(output());
    ASSERT_EQ(document["sources"].size(), 1U);
    EXPECT_EQ(document["sources"][0]["name"], test::uniqueJackName("other") + " MIDI source:keys");
    const int id = document["sources"][0]["id"];
    ASSERT_EQ(exitCodeOfShell(jack + " midi"), 0);
    EXPECT_THAT(output(), HasSubstr(std::to_string(id) + "  "));
    EXPECT_EQ(
        exitCodeOfShell(
            jack + fmt::format(" run --device virtual:panel --seconds 0.1 --meters none --midi-source {}", id)
        ),
        0
    ) << errors();

    EXPECT_EQ(exitCodeOfShell(jack + " midi --send 3:60 --seconds 0.1"), 1);
    EXPECT_THAT(errors(), HasSubstr("No program received the note"));
    auto sent = std::async(std::launch::async, [&] {
        return exitCodeOfShell(jack + " midi --send 3:60:90 --seconds 60");
    });
    EXPECT_TRUE(test::waitFor([&] {
        const auto sources = other.sources();
        return sources.size() == 2 && input->connect(sources.back().address) == platform::noErr;
    }));
    EXPECT_EQ(sent.get(), 0) << errors();
    EXPECT_THAT(received.waitFor(2), ElementsAre(ElementsAre(0x92, 60, 90), ElementsAre(0x82, 60, 0)));
}

TEST_F(MIDICommand, LearnsANoteThatThenChangesTheMix) {
    const test::JackTestServer server({});
    session::MixerJSONDocument document;
    document.data.bufferSize = 256;
    document.data.channels.push_back(session::ChannelStrip::make({}, "Mic", 0, 0).settings());
    document.data.channels[0].bypassed = true;
    document.data.snapshots.resize(2);
    auto channels = document.data.channels;
    document.data.snapshots[0].channels = channels;
    document.data.snapshots[1].name = "Silent";
    channels[0].muted = true;
    document.data.snapshots[1].channels = channels;
    ASSERT_TRUE(document.write(folder / "show.orvane"));
    const std::string run = fmt::format(
        "ORVANE_DRIVERS=jack,virtual {} run --device virtual:panel", test::builtProgram("orvane-cli-guarded")
    );
    EXPECT_EQ(exitCodeOfShell(run + " --learn 1"), 1);
    EXPECT_THAT(errors(), HasSubstr("has no snapshot 1 to learn"));

    platform::jack::JackClients clients(test::uniqueJackName("other"));
    platform::jack::JackMIDIDriver other(clients);
    const auto keyboard = other.createSource("keys").value();
    const std::string pid = (folder / "pid").string();
    auto running = std::async(std::launch::async, [&] {
        return exitCodeOfShell(fmt::format(
            "{} --session '{}' --learn 2 --meters json & echo $! >'{}'; wait $!", run,
            (folder / "show.orvane").string(), pid
        ));
    });
    const auto lastLevel = [&] {
        const std::string meters = output();
        const std::size_t end = meters.rfind('\n');
        if (end == std::string::npos) return -240.0;
        const std::size_t begin = end == 0 ? 0 : meters.rfind('\n', end - 1) + 1;
        return nlohmann::json::parse(meters.substr(begin, end - begin))["strips"][0]["levelDB"].get<double>();
    };
    EXPECT_TRUE(test::waitFor([&] { return lastLevel() > -100.0; }));
    // The mixer receives notes once it runs.
    const auto playUntil = [&](const std::string& message) {
        return test::waitFor([&] {
            keyboard->send(std::array<std::uint8_t, 3>{0x91, 61, 100});
            return errors().find(message) != std::string::npos;
        });
    };
    EXPECT_TRUE(playUntil("The note now recalls snapshot 2: Silent\n"));
    EXPECT_TRUE(playUntil("Recalled snapshot 2: Silent\n"));
    const std::size_t before = output().size();
    EXPECT_TRUE(test::waitFor([&] { return output().size() > before + 2000; }));
    EXPECT_EQ(std::system(fmt::format("kill $(cat '{}')", pid).c_str()), 0);
    EXPECT_EQ(running.get(), 0) << errors();
    EXPECT_LE(lastLevel(), -200.0);
}

} // namespace
