#include "engine/session/channel_strip.h"
#include "engine/session_files.h"
#include "support/build_files.h"
#include "support/jack_peer.h"
#include "support/jack_test_server.h"
#include "support/session_manager_peer.h"
#include "support/temporary_folder.h"
#include "support/wait_for.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

using namespace orvane;
using test::contentOf;
using test::SessionManagerPeer;
using test::TemporaryFolder;
using testing::HasSubstr;

class ManagedProgram : public testing::Test {
  protected:
    /// Starts the program, which announces itself to the manager.
    void start(std::vector<std::string> arguments, const char* drivers = "virtual") {
        arguments.insert(arguments.begin(), test::builtProgram("orvane"));
        std::vector<char*> words;
        for (std::string& argument : arguments)
            words.push_back(argument.data());
        words.push_back(nullptr);
        program = ::fork();
        ASSERT_GE(program, 0);
        if (program != 0) {
            ASSERT_TRUE(manager.welcomes());
            return;
        }
        ::setenv("NSM_URL", manager.url().c_str(), 1);
        ::setenv("HOME", (folder / "home").c_str(), 1);
        ::setenv("XDG_CONFIG_HOME", (folder / "config").c_str(), 1);
        ::setenv("XDG_DATA_HOME", (folder / "data").c_str(), 1);
        ::setenv("LV2_PATH", (folder / "lv2").c_str(), 1);
        ::setenv("ORVANE_DRIVERS", drivers, 1);
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
        ::execv(words.front(), words.data());
        ::_exit(127);
    }

    void open() {
        manager.say("/nsm/client/open", "sss", (folder / "show/ORVANE.nABC").c_str(), "Show", "ORVANE.nABC");
    }

    /// Whether the program answers a request as this text begins.
    bool answersOpen(const char* answer) {
        open();
        return manager.receives(answer);
    }
    bool answersSave(const char* answer) {
        manager.say("/nsm/client/save", "");
        return manager.receives(answer);
    }

    /// Ends the program as a session manager does.
    void expectEnd() {
        ::kill(program, SIGTERM);
        EXPECT_EQ(exitCode(), 0);
    }
    /// Waits for the program to end; -1 if it was killed.
    int exitCode() {
        int status = 0;
        EXPECT_EQ(::waitpid(program, &status, 0), program);
        program = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    void TearDown() override {
        if (program <= 0) return;
        ::kill(program, SIGKILL);
        exitCode();
    }

    const TemporaryFolder folder;
    const std::filesystem::path file = folder / "show/ORVANE.nABC.orvane";
    SessionManagerPeer manager;
    pid_t program = 0;
};

TEST_F(ManagedProgram, OpensAndSavesTheSessionAndOpensItAgain) {
    start({"--channels", "8"});
    EXPECT_THAT(manager.message(), HasSubstr("ORVANE :dirty: orvane 1 2 " + std::to_string(program)));
    ASSERT_TRUE(answersOpen("/reply /nsm/client/open "));
    EXPECT_FALSE(std::filesystem::exists(file));
    manager.say("/nsm/client/session_is_loaded", "");
    ASSERT_TRUE(answersSave("/reply /nsm/client/save "));
    EXPECT_THAT(contentOf(file), HasSubstr("\"channels\""));
    expectEnd();

    // Only the file contains the number of strips.
    const std::string stored = contentOf(file);
    start({});
    ASSERT_TRUE(answersOpen("/reply /nsm/client/open "));
    std::filesystem::remove(file);
    ASSERT_TRUE(answersSave("/reply /nsm/client/save "));
    EXPECT_EQ(contentOf(file), stored);

    std::filesystem::remove_all(file.parent_path());
    EXPECT_TRUE(answersSave("/error /nsm/client/save -1 "));
    expectEnd();
}

TEST_F(ManagedProgram, SavesOnceOpenIfAskedBefore) {
    start({"--channels", "8"});
    ::kill(program, SIGUSR1);
    ASSERT_TRUE(answersOpen("/reply /nsm/client/open "));
    EXPECT_TRUE(test::waitFor([&] { return std::filesystem::exists(file); }));
    expectEnd();
}

TEST_F(ManagedProgram, SavesNothingBeforeTheSessionIsOpen) {
    // A bundle that takes a second to read.
    std::string statements;
    for (int i = 0; i < 500'000; ++i)
        statements += "<urn:orvane:a> <urn:orvane:b> <urn:orvane:" + std::to_string(i) + "> .\n";
    std::filesystem::create_directories(folder / "lv2/slow.lv2");
    folder.add("lv2/slow.lv2/manifest.ttl", statements);
    session::MixerDocumentData show;
    show.bufferSize = 512;
    show.channels = session::settingsOf(session::makeDefaultStrips(2));
    show.channels[0].name = "Moderator";
    show.channels[1].pluginSlots[0].component = session::AUComponentIdentity{1, 2, 3};
    std::filesystem::create_directories(file.parent_path());
    ASSERT_TRUE(engine::exportSession(show, file));
    const std::string stored = contentOf(file);

    start({});
    open();
    // The installed plugins are not known yet.
    EXPECT_TRUE(answersSave("/error /nsm/client/save -6 "));
    EXPECT_EQ(contentOf(file), stored);
    ASSERT_TRUE(manager.receives("/reply /nsm/client/open "));
    ASSERT_TRUE(answersSave("/reply /nsm/client/save "));
    EXPECT_EQ(contentOf(file), stored);
    expectEnd();
}

TEST_F(ManagedProgram, MakesNoAudioBeforeItsSessionIsNamed) {
    // The program ends as soon as it opens its audio, because the file is missing.
    start({"--virtual-input", "none.wav"});
    EXPECT_TRUE(answersOpen("/error /nsm/client/open "));
    EXPECT_THAT(manager.message(), HasSubstr("none.wav"));
    EXPECT_EQ(exitCode(), 1);
}

TEST_F(ManagedProgram, UsesTheManagersNameForItsAudioClient) {
    const test::JackTestServer server({});
    start({"--channels", "2", "--start", "--device", "jack:system"}, "jack");
    ASSERT_TRUE(answersOpen("/reply /nsm/client/open "));
    test::JackPeer peer("peer", 2);
    EXPECT_TRUE(test::waitFor([&] { return peer.connectTo("ORVANE.nABC"); }));
    expectEnd();
}

TEST_F(ManagedProgram, KeepsASessionFileThatItCannotRead) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << "no session";
    start({"--channels", "8"});
    ASSERT_TRUE(answersOpen("/error /nsm/client/open -9 "));
    ASSERT_TRUE(answersSave("/error /nsm/client/save -6 "));
    EXPECT_EQ(contentOf(file), "no session");
    expectEnd();
}

} // namespace
