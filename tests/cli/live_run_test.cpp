#include "platform/files/sound_file_reader.h"
#include "support/build_files.h"
#include "support/desktop_peer.h"
#include "support/program.h"
#include "support/server_process.h"
#include "support/sound_files.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace {

using namespace orvane::test;
using namespace testing;

/// Aborts at any allocation on an audio thread; its wall clock jumps back and forth.
const std::string program = orvane::test::builtProgram("orvane-cli-guarded");
const std::string cli = "ORVANE_DRIVERS=virtual " + program;
const std::string panel = orvane::test::panelRecording();

using Devices = ProgramTest;

TEST_F(Devices, AreListedForPeopleAndForPrograms) {
    EXPECT_EQ(exitCodeOfShell(cli + " devices"), 0);
    EXPECT_THAT(output(), HasSubstr("virtual:panel"));
    EXPECT_EQ(exitCodeOfShell("ORVANE_DRIVERS= " + program + " devices"), 0) << "names all drivers";
    EXPECT_THAT(output(), HasSubstr("virtual:panel"));
    EXPECT_EQ(exitCodeOfShell(cli + " devices --json --virtual-input " + panel), 0);
    const auto document = nlohmann::json::parse(output());
    EXPECT_EQ(document["devices"][0]["uid"], "virtual:file:panel-8ch.flac");
    EXPECT_EQ(document["devices"].size(), 4U);
    const auto noText = folder / "no\xfftext.flac";
    std::filesystem::copy_file(panel, noText);
    EXPECT_EQ(exitCodeOfShell(cli + " devices --json --virtual-input '" + noText.string() + "'"), 0);
    EXPECT_TRUE(nlohmann::json::accept(output()));
}

class LiveRun : public ProgramTest {
  protected:
    /// What a mix says after SIGUSR1, which it is sent once it runs and the command `before` has run.
    [[nodiscard]] std::string
    saidAboutSaving(const std::string& options, const std::string& before = "") const {
        const std::string command = fmt::format(
            "rm -f {0}; mkfifo {0}; {1} run --meters json {2} >{0} 2>{0}.says & "
            "{{ read line; {3} kill -USR1 $!; while ! grep -q session {0}.says && read line; do :; done; "
            "kill -TERM $!; cat >/dev/null; }} <{0}; wait $!",
            (folder / "meters").string(), cli, options, before
        );
        EXPECT_EQ(exitCodeOfShell(command), 0) << command;
        return contentOf(folder / "meters.says");
    }
};

TEST_F(LiveRun, PrintsOneMeterObjectPerLineAndASummary) {
    EXPECT_EQ(exitCodeOfShell(cli + " run --seconds 0.3 --channels 4 --buffer-size 128 --meters json"), 0);
    std::istringstream lines(output());
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        const auto frame = nlohmann::json::parse(line);
        EXPECT_EQ(frame["strips"].size(), 4U);
        EXPECT_LE(frame["strips"][0]["levelDB"], 0.0);
    }
    EXPECT_GE(count, 1);
    EXPECT_THAT(
        errors(), MatchesRegex("(orvane-cli: This account [^\n]*\n)?orvane-cli: Ran for "
                               "[^\n]* xruns; load [^\n]* at most; [^\n]*\n")
    );
}

TEST_F(LiveRun, OverwritesTextMetersOnATerminalOnly) {
    const std::string run = cli + " run --seconds 0.3 --channels 2 --meters text";
    EXPECT_EQ(exitCodeOfShell(run), 0);
    EXPECT_THAT(output(), AllOf(HasSubstr(" 2 "), Not(HasSubstr("\x1b["))));
    std::istringstream lines(output());
    double second = 0.0;
    for (std::string line; std::getline(lines, line);)
        if (line.find(" s, load") != std::string::npos) {
            EXPECT_GE(std::stod(line), second) << "one frame a second";
            second += 1.0;
        }
    EXPECT_EQ(exitCodeOfShell("script -qec '" + run + "' /dev/null"), 0);
    EXPECT_THAT(output(), HasSubstr("\x1b[5A"));
}

TEST_F(LiveRun, EndsAtASignalIfItsOutputIsNotRead) {
    for (const std::string streams : {">&3", ">/dev/null 2>&3", ">&3 2>&3"}) {
        // The pipe is full from the start; once the signal is caught, the mix begins.
        const std::string command = fmt::format(
            "rm -f {0}; mkfifo {0}; exec 3<>{0}; dd if=/dev/zero of={0} oflag=nonblock bs=4096 2>/dev/null; "
            "{1} run --meters json {2} & "
            "until [ ! -d /proc/$! ] || grep -q 'SigCgt:.*[4-7c-f]...$' /proc/$!/status; do :; done; "
            "kill -TERM $!; wait $!",
            (folder / "full").string(), cli, streams
        );
        EXPECT_EQ(exitCodeOfShell(command), 0) << streams;
    }
}

TEST_F(LiveRun, ContinuesWithoutMetersIfTheirReaderIsGone) {
    const std::string command = fmt::format(
        "mkfifo {0}; {1} run --meters json >{0} 2>{0}.says & head -n 1 <{0}; "
        "until [ ! -d /proc/$! ] || grep -q meters {0}.says; do :; done; kill -TERM $!; wait $!",
        (folder / "meters").string(), cli
    );
    EXPECT_EQ(exitCodeOfShell(command), 0);
    EXPECT_NO_THROW(nlohmann::json::parse(output()));
    EXPECT_THAT(
        contentOf(folder / "meters.says"),
        MatchesRegex("(orvane-cli: This account [^\n]*\n)?orvane-cli: The meters can no longer be written "
                     "\\(Broken pipe\\); [^\n]*\norvane-cli: Ran for [^\n]*\n")
    );
}

TEST_F(LiveRun, ContinuesIfItsMessagesCannotBeWritten) {
    const std::string run = cli + " run --meters none --seconds 0.1";
    for (const std::string& command :
         {run + " 2>/dev/full", run + " 2>&-",
          "{ { " + run + "; echo $? >&3; } 2>&1 >&3 | true; } 3>'" + (folder / "exit").string()
              + "'; exit $(cat '" + (folder / "exit").string() + "')"})
        EXPECT_EQ(exitCodeOfShell(command), 0) << command;
}

TEST_F(LiveRun, PrintsNothingIntoItsFilesIfItsStreamsAreClosed) {
    const std::string recording = (folder / "out.wav").string();
    EXPECT_EQ(
        exitCodeOfShell(cli + " run --meters json --seconds 0.2 --record " + recording + " >&- 2>&-"), 0
    );
    EXPECT_TRUE(orvane::platform::SoundFileReader::open(recording));
    EXPECT_THAT(contentOf(recording), Not(HasSubstr("strips")));
}

TEST_F(LiveRun, ContinuesIfItsRecordingFailsAndFailsAtTheEnd) {
    const std::string recording = (folder / "out.wav").string();
    const std::string run = "ulimit -f 64; " + cli
                            + " run --meters none --device virtual:panel --seconds 0.5 --record " + recording;
    EXPECT_EQ(exitCodeOfShell(run), 1);
    EXPECT_THAT(
        errors(),
        MatchesRegex("(orvane-cli: This account [^\n]*\n)?(orvane-cli: [^\n]*out.wav\" could not be written: "
                     "[^\n]*\n)orvane-cli: Ran for 0.5[^\n]*\norvane-cli: [^\n]*out.wav[^\n]*kept[^\n]*\n")
    );
    EXPECT_TRUE(orvane::platform::SoundFileReader::open(recording));
    EXPECT_EQ(exitCodeOfShell(cli + " run --meters none --seconds 0.1 --record " + recording), 0);
    EXPECT_THAT(errors(), HasSubstr("the recording goes to " + (folder / "out-2.wav").string()));
    EXPECT_EQ(exitCodeOfShell(cli + " run --record /nowhere/out.wav"), 1);
    const char* const why = "The file \"/nowhere/out.wav\" could not be written: No such file or directory.";
    EXPECT_THAT(
        errors(), AllOf(
                      HasSubstr(fmt::format("[VirtualAudio] ORVANE Demo Panel does not start. {}\n", why)),
                      HasSubstr(fmt::format("AudioOutputUnitStart failed: OSStatus 2003329396. {}\n", why))
                  )
    );
    EXPECT_EQ(exitCodeOfShell(cli + " run --seconds 0.1 --record out.flac"), 1);
    EXPECT_THAT(errors(), HasSubstr("ends in .wav, .w64 or .rf64"));
}

TEST_F(LiveRun, KeepsTheComputerAwake) {
    orvane::test::DesktopPeer desktop;
    const pid_t run = startServer({"env", "ORVANE_DRIVERS=virtual", program, "run", "--meters", "none"});
    EXPECT_TRUE(waitFor([&] {
        desktop.serve();
        return desktop.locks() == 1;
    }));
    ::kill(run, SIGTERM);
    EXPECT_EQ(orvane::test::exitCodeOf(run), 0);
    EXPECT_EQ(desktop.locks(), 0U);
}

TEST_F(LiveRun, SavesItsSessionAtASignal) {
    const auto session = folder.add(
        "show.orvane", R"({"channels": [{"name": "Host", "outputRouting": {"none": {}}, "genderMode": "male",
            "muted": false, "bypassed": false, "trim": 0.5}, {"name": "Guest", "outputRouting": {"none": {}},
            "genderMode": "neutral", "muted": true, "bypassed": false, "trim": 1}], "masterTargetDB": -12,
            "bufferSize": 512, "snapshots": []})"
    );
    EXPECT_THAT(saidAboutSaving(""), HasSubstr("The session has no file to save to"));
    EXPECT_THAT(
        saidAboutSaving("--channels 1 --session " + session.string()),
        HasSubstr("Saved the session to " + session.string())
    );
    const auto document = nlohmann::json::parse(contentOf(session));
    EXPECT_EQ(document["channels"][0]["name"], "Host");
    EXPECT_EQ(document["channels"][1]["name"], "Guest") << "the mixer has no strip for it";
    EXPECT_EQ(document["duckerReleaseMs"], 400.0);
}

TEST_F(LiveRun, ReplacesAChangedOrProtectedSessionOnlyIfForced) {
    const std::string session = (folder / "show.orvane").string();
    EXPECT_EQ(exitCodeOfShell(cli + " run --session " + session), 1);
    EXPECT_THAT(errors(), HasSubstr("orvane-cli session --new 8 '" + session + "' makes one"));
    const std::string make = cli + " session --new 3 " + session;
    EXPECT_EQ(exitCodeOfShell(make), 0) << errors();
    EXPECT_EQ(nlohmann::json::parse(contentOf(session))["channels"].size(), 3U);
    EXPECT_EQ(exitCodeOfShell(make), 1);
    EXPECT_THAT(errors(), HasSubstr("already exists"));
    for (const auto& [option, change, says] :
         {std::tuple("", "echo x >>", "was changed by another program"),
          {"", "chmod 444", "is write-protected"},
          {"--force", "chmod 444", "Saved the session"}}) {
        EXPECT_EQ(exitCodeOfShell("rm -f " + session + "; " + make), 0);
        const std::string before = contentOf(session);
        EXPECT_THAT(
            saidAboutSaving(
                fmt::format("--session {} {}", session, option), fmt::format("{} {};", change, session)
            ),
            HasSubstr(says)
        );
        if (*option == '\0') {
            EXPECT_THAT(contentOf(session), testing::StartsWith(before)) << says;
        }
    }
}

TEST_F(LiveRun, SurvivesSaveRequestsUntilItsLastInstant) {
    // From the moment it catches SIGUSR1 until it has become a zombie.
    const std::string command =
        cli
        + " run --meters none --seconds 0.1 & "
          "until [ ! -d /proc/$! ] || grep -q 'SigCgt:.*[2367abef]..$' /proc/$!/status; do :; done; "
          "until [ ! -d /proc/$! ] || grep -q ' Z ' /proc/$!/stat; do kill -USR1 $!; done; wait $!";
    EXPECT_EQ(exitCodeOfShell(command), 0) << errors();
}

TEST_F(LiveRun, ReportsThatTheMasterDeviceLacksTheSessionsOutputs) {
    const auto session = folder.add(
        "show.orvane", R"({"channels": [], "masterTargetDB": -12, "bufferSize": 512, "snapshots": [],
            "masterOutputRouting": {"stereo": {"left": 6, "right": 7}}})"
    );
    const std::string run =
        cli + " run --meters none --seconds 0.1 --channels 8 --session " + session.string();
    EXPECT_EQ(exitCodeOfShell(run), 0);
    EXPECT_THAT(errors(), Not(HasSubstr("Master Out")));
    EXPECT_EQ(exitCodeOfShell(run + " --master-device virtual:monitor"), 0);
    EXPECT_THAT(errors(), HasSubstr("Master Out was reset to \"None\""));
}

TEST_F(LiveRun, ContinuesAfterBeingStopped) {
    const std::string command = fmt::format(
        "mkfifo {0}; env --default-signal=INT {1} run --meters json >{0} & "
        "{{ read line; kill -STOP $!; until grep -q ' T ' /proc/$!/stat; do :; done; kill -CONT $!; "
        "for more in 1 2 3 4 5 6 7 8 9; do read line || exit 9; done; kill -INT $!; cat >/dev/null; }} <{0}; "
        "wait $!",
        (folder / "meters").string(), cli
    );
    EXPECT_EQ(exitCodeOfShell(command), 0) << errors();
}

TEST_F(LiveRun, ReportsInOneLineWhyItDoesNotStart) {
    folder.add("bad.orvane", "{}");
    const auto configuration = folder.add(
        "asound.conf", R"(
        pcm.busy { type scripted openError 16 hint.show on }
        pcm.idle { type scripted hint.show on }
        pcm_type.scripted.lib ")"
                           + orvane::test::builtModule("liborvane_scripted_pcm") + "\"\n"
    );
    const std::string onALSA = fmt::format(
        "ORVANE_DRIVERS=alsa ALSA_CONFIG_PATH='{}' {} run --device alsa:", configuration.string(), program
    );
    const std::pair<std::string, const char*> reasonByCommand[] = {
        {cli + " run --device jack:nowhere", "There is no audio device jack:nowhere"},
        {"ORVANE_DRIVERS=none " + program + " run", "There is no audio device with inputs"},
        {cli + " run --master-device virtual:none", "virtual:none"},
        {onALSA + "busy", "busy (in use by another program): Failed to start audio engine: "},
        {onALSA + "idle --rate 96000", "alsa:idle runs at 48000 Hz and not at 96000 Hz"},
        {cli + " run --master-device virtual:monitor --rate 44100", "48000 Hz and not at 44100 Hz"},
        {cli + " run --midi-source -12", "There is no MIDI source -12"},
        {cli + " run --device jack:system --record out.wav",
         "Only virtual devices can be recorded; jack:system is not one."},
        {cli + " run --session '" + (folder / "bad.orvane").string() + "'", "Couldn't read that settings"}};
    for (const auto& [command, reason] : reasonByCommand) {
        EXPECT_EQ(exitCodeOfShell(command), 1) << command;
        EXPECT_THAT(errors(), MatchesRegex("orvane-cli: [^\n]+\n")) << command;
        EXPECT_THAT(errors(), HasSubstr(reason)) << command;
    }
}

TEST_F(LiveRun, MatchesTheOfflineRenderBitForBit) {
    const std::string live = (folder / "live.wav").string();
    const std::string offline = (folder / "offline.wav").string();
    const std::string command = fmt::format(
        "{0} run --meters none --seconds 2.2 --buffer-size 256 --record '{1}' --virtual-input {2} && "
        "{0} render --buffer-size 256 --input {2} --output '{3}'",
        cli, live, panel, offline
    );
    ASSERT_EQ(exitCodeOfShell(command), 0) << errors();
    orvane::test::Channels rendered = orvane::test::readSound(offline);
    const orvane::test::Channels recorded = orvane::test::readSound(live);
    for (const std::size_t channel : {0, 1}) {
        const std::size_t length = recorded[channel].size();
        ASSERT_GT(length, 48000U);
        EXPECT_NE(recorded[channel], std::vector<float>(length)) << "silence";
        rendered[channel].resize(length);
        EXPECT_EQ(recorded[channel], rendered[channel]) << "channel " << channel;
    }
}

} // namespace
