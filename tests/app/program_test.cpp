#include "support/build_files.h"
#include "support/desktop_peer.h"
#include "support/program.h"
#include "support/wait_for.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

namespace {

using orvane::test::contentOf;
using orvane::test::TemporaryFolder;
using orvane::test::waitFor;
using testing::HasSubstr;
using testing::MatchesRegex;

const std::string programFile = orvane::test::builtProgram("orvane");

/// Runs the program with these shell arguments and a home folder of its own.
int exitCodeOf(const TemporaryFolder& folder, const std::string& arguments, const std::string& display) {
    return orvane::test::exitCodeOfShell(
        folder, "HOME='" + (folder / "home").string() + "' XDG_CONFIG_HOME= ORVANE_DRIVERS=virtual " + display
                    + " " + programFile + " " + arguments
    );
}

TEST(Application, ReportsWhyItDoesNotStart) {
    const TemporaryFolder folder;
    struct Case {
        std::string arguments;
        std::string display;
        int exitCode;
        const char* says;
    };
    const std::string none = "DISPLAY= WAYLAND_DISPLAY= QT_QPA_PLATFORM=";
    const std::string dead = "DISPLAY=:987 WAYLAND_DISPLAY= QT_QPA_PLATFORM=";
    // Without XDG_RUNTIME_DIR, a desktop library prints a message of its own.
    const std::string homeless = "env -u XDG_RUNTIME_DIR " + none;
    const std::string offscreen = "QT_QPA_PLATFORM=offscreen";
    for (const Case& one :
         {Case{"", none, 1, "orvane-cli run"}, Case{"", dead, 1, "orvane-cli run"},
          Case{"", homeless, 1, "orvane-cli run"}, Case{"--channels 0", none, 2, "--channels"},
          Case{"--buffer-size 100", none, 2, "--buffer-size"}, Case{"--rate 5", none, 2, "--rate"},
          Case{"--loud", none, 2, "--loud"}, Case{"--virtual-input none.wav", offscreen, 1, "none.wav"},
          Case{"--device virtual:none --record out.wav", offscreen, 1, "virtual:none"}}) {
        EXPECT_EQ(exitCodeOf(folder, one.arguments, one.display), one.exitCode) << one.arguments;
        const std::string message = contentOf(folder / "stderr");
        EXPECT_THAT(message, MatchesRegex("orvane: [^\n]+\n")) << one.arguments;
        EXPECT_THAT(message, HasSubstr(one.says)) << one.arguments;
        EXPECT_EQ(contentOf(folder / "stdout"), "") << one.arguments;
        EXPECT_EQ(exitCodeOf(folder, one.arguments + " 2>/dev/full", one.display), one.exitCode)
            << one.arguments;
    }
    for (const auto& [arguments, says] : {std::pair("--help", "--master-device"), {"--version", "orvane "}}) {
        EXPECT_EQ(exitCodeOf(folder, arguments, none), 0) << arguments;
        EXPECT_THAT(contentOf(folder / "stdout"), HasSubstr(says)) << arguments;
        EXPECT_EQ(contentOf(folder / "stderr"), "") << arguments;
    }
}

TEST(Application, MixesUntilASignal) {
    const TemporaryFolder folder;
    orvane::test::DesktopPeer desktop;
    const std::string recording = (folder / "out.wav").string();
    const std::string panel = orvane::test::panelRecording();
    const pid_t program = ::fork();
    ASSERT_GE(program, 0);
    if (program == 0) {
        ::setenv("HOME", (folder / "home").c_str(), 1);
        ::setenv("XDG_CONFIG_HOME", (folder / "config").c_str(), 1);
        ::setenv("XDG_DATA_HOME", (folder / "data").c_str(), 1);
        ::setenv("ORVANE_DRIVERS", "virtual", 1);
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
        ::execl(
            programFile.c_str(), programFile.c_str(), "--channels", "8", "--start", "--virtual-input",
            panel.c_str(), "--record", recording.c_str(), nullptr
        );
        ::_exit(127);
    }
    constexpr std::uintmax_t aSecondOfTheRecording = 8UL * 48000UL * sizeof(float);
    EXPECT_TRUE(waitFor([&] {
        std::error_code missing;
        for (const auto& entry : std::filesystem::directory_iterator(folder / "."))
            if (entry.is_regular_file() && entry.file_size(missing) > aSecondOfTheRecording) return true;
        return false;
    }));
    EXPECT_TRUE(waitFor([&] {
        desktop.serve();
        return desktop.locks() == 1;
    }));
    ::kill(program, SIGTERM);
    int status = 0;
    ASSERT_EQ(::waitpid(program, &status, 0), program);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_EQ(desktop.locks(), 0U);
    EXPECT_TRUE(std::filesystem::exists(recording));
    EXPECT_THAT(contentOf(folder / "config/orvane/preferences"), HasSubstr("orvaneWindow="));
}

} // namespace
