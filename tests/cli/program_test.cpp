#include "support/build_files.h"
#include "support/program.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

using orvane::test::contentOf;
using orvane::test::TemporaryFolder;
using testing::HasSubstr;
using testing::MatchesRegex;

const std::string program = orvane::test::builtProgram("orvane-cli");
const std::string panel = orvane::test::panelRecording();

/// Runs the program with these arguments, as a shell takes them.
int exitCodeOf(const TemporaryFolder& folder, const std::string& arguments) {
    return orvane::test::exitCodeOfShell(folder, program + " " + arguments);
}

TEST(Program, TellsSuccessFailureAndWrongUsageApart) {
    const TemporaryFolder folder;
    const std::string input = std::string("render --input ") + panel;
    const std::string output = " --output '" + (folder / "out.wav").string() + "'";
    struct Case {
        std::string arguments;
        int exitCode;
        const char* says;
    };
    for (const Case& one :
         {Case{"", 2, "subcommand"}, Case{"mix", 2, "mix"}, Case{input, 2, "--output"},
          Case{input + output + " --buffer-size 100", 2, "--buffer-size"},
          Case{input + output + " --channels 0", 2, "--channels"},
          Case{input + output + " --loud", 2, "--loud"}, Case{"run --meters 7", 2, "--meters"},
          Case{"render --input none.wav" + output, 1, "none.wav"},
          Case{input + " --output /no/such/folder/out.wav", 1, "out.wav"}}) {
        EXPECT_EQ(exitCodeOf(folder, one.arguments), one.exitCode) << one.arguments;
        const std::string message = contentOf(folder / "stderr");
        EXPECT_THAT(message, MatchesRegex("orvane-cli: [^\n]+\n")) << one.arguments;
        EXPECT_THAT(message, HasSubstr(one.says)) << one.arguments;
        EXPECT_EQ(contentOf(folder / "stdout"), "") << one.arguments;
    }
}

TEST(Program, HelpsAndRendersWithNothingOnStandardError) {
    const TemporaryFolder folder;
    struct Case {
        std::string arguments;
        const char* says;
    };
    for (const Case& one :
         {Case{"--help", "render"}, Case{"--version", "orvane-cli "}, Case{"render --help", "--stems"},
          Case{"plugins", "MDA Limiter"}, Case{"plugins --json", "\"name\": \"MDA Limiter\""},
          Case{
              std::string("render --input ") + panel + " --output '" + (folder / "out.wav").string() + "'",
              "times real time"}}) {
        EXPECT_EQ(exitCodeOf(folder, one.arguments), 0) << one.arguments;
        EXPECT_THAT(contentOf(folder / "stdout"), HasSubstr(one.says)) << one.arguments;
        EXPECT_EQ(contentOf(folder / "stderr"), "") << one.arguments;
    }
}

TEST(Program, SaysWhereItsResultCannotBeWritten) {
    const TemporaryFolder folder;
    const auto session =
        folder.add("empty.orvane", R"({"channels": [], "masterTargetDB": -12, "bufferSize": 512,
        "snapshots": []})");
    for (const std::string& arguments :
         {std::string("--help"), std::string("--version"), std::string("devices"),
          std::string("devices --json"), std::string("midi"), std::string("midi --json"),
          std::string("plugins"), std::string("plugins --json"),
          std::string("render --input ") + panel + " --output '" + (folder / "out.wav").string() + "'",
          "session '" + session.string() + "'"}) {
        EXPECT_EQ(exitCodeOf(folder, arguments + " >/dev/full"), 1) << arguments;
        EXPECT_EQ(
            contentOf(folder / "stderr"),
            "orvane-cli: The result could not be written: No space left on device.\n"
        ) << arguments;
    }
}

TEST(Program, IsSilentIfTheReaderOfItsResultHasReadEnough) {
    const TemporaryFolder folder;
    const std::string closedPipe =
        fmt::format("mkfifo {0}; exec 4<>{0} 3>{0} 4>&-; ", (folder / "pipe").string());
    EXPECT_EQ(orvane::test::exitCodeOfShell(folder, closedPipe + program + " plugins >&3"), 0);
    EXPECT_EQ(contentOf(folder / "stderr"), "");
}

TEST(Program, TakesAFileThatOutgrowsItsLimitAsAnError) {
    const TemporaryFolder folder;
    const std::string command = "ulimit -f 64; " + program + " render --input " + panel + " --output '"
                                + (folder / "out.wav").string() + "' 2>'" + (folder / "stderr").string()
                                + "'";
    EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 1);
    EXPECT_THAT(contentOf(folder / "stderr"), MatchesRegex("orvane-cli: [^\n]*out.wav[^\n]*\n"));
    EXPECT_EQ(folder.names(), (std::set<std::string>{"stderr"}));
}

TEST(Program, MakesNoFileOrFolderThatEverybodyMayWrite) {
    namespace fs = std::filesystem;
    const TemporaryFolder folder;
    const std::string command = std::string("umask 0; XDG_DATA_HOME='") + (folder / "data").string() + "' "
                                + program + " render --input " + panel + " --output '"
                                + (folder / "mix.wav").string() + "' --stems '" + (folder / "stems").string()
                                + "' --report '" + (folder / "report.json").string() + "'";
    EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 0);
    EXPECT_THAT(folder.names(), testing::IsSupersetOf({"mix.wav", "stems", "report.json"}));
    for (const auto& entry : fs::recursive_directory_iterator(folder / ""))
        EXPECT_EQ(entry.status().permissions() & fs::perms::others_write, fs::perms::none) << entry.path();
}

TEST(Session, IsPrintedAsItWouldBeSaved) {
    const TemporaryFolder folder;
    const auto file = folder.add(
        "old.orvane", R"({"channels": [{"name": "A", "outputRouting": {"none": {}}, "genderMode": "male",
            "muted": false, "bypassed": false, "trim": 0.5}], "masterTargetDB": -12, "bufferSize": 100,
            "snapshots": [], "comment": "unknown"})"
    );
    const std::string command = "session --channels 2 ";
    EXPECT_EQ(exitCodeOf(folder, command + file.string()), 0);
    const std::string printed = contentOf(folder / "stdout");
    const auto document = nlohmann::json::parse(printed);
    EXPECT_EQ(document["channels"].size(), 2U);
    EXPECT_EQ(document["channels"][0]["trim"], 0.5);
    EXPECT_EQ(document["channels"][1]["name"], "Ch 2");
    EXPECT_EQ(document["bufferSize"], 512);
    EXPECT_EQ(document["duckerReleaseMs"], 400.0);
    EXPECT_FALSE(document.contains("comment"));
    const auto again = folder.add("again.orvane", printed);
    EXPECT_EQ(exitCodeOf(folder, "session " + again.string()), 0);
    EXPECT_EQ(contentOf(folder / "stdout"), printed);

    const auto bad = folder.add("bad.orvane", "{}");
    EXPECT_EQ(exitCodeOf(folder, command + bad.string()), 1);
    EXPECT_THAT(
        contentOf(folder / "stderr"), MatchesRegex("orvane-cli: Couldn't read that settings file: [^\n]+\n")
    );
}

} // namespace
