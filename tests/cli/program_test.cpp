#include "support/build_files.h"
#include "support/program.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

using namespace orvane::test;
using testing::HasSubstr;
using testing::MatchesRegex;

const std::string program = orvane::test::builtProgram("orvane-cli");
const std::string panel = orvane::test::panelRecording();

class Program : public ProgramTest {
  protected:
    /// Runs the program with these shell arguments.
    [[nodiscard]] int exitCodeOf(const std::string& arguments) const {
        return exitCodeOfShell(program + " " + arguments);
    }

    /// A session with one channel of this name, as JSON has it.
    [[nodiscard]] std::filesystem::path sessionNamed(const std::string& name) const {
        return folder.add(
            "show.orvane", R"({"channels": [{"name": ")" + name + R"(", "outputRouting": {"none": {}},
            "genderMode": "male", "muted": false, "bypassed": false, "trim": 1}], "masterTargetDB": -12,
            "bufferSize": 512, "snapshots": []})"
        );
    }
};

TEST_F(Program, DistinguishesSuccessFailureAndWrongUsage) {
    const std::string input = std::string("render --input ") + panel;
    const std::string destination = " --output '" + (folder / "out.wav").string() + "'";
    const std::tuple<std::string, int, const char*> cases[] = {
        {"", 2, "subcommand"},
        {"mix", 2, "mix"},
        {input, 2, "--output"},
        {input + destination + " --buffer-size 100", 2, "--buffer-size"},
        {input + destination + " --channels 0", 2, "--channels"},
        {input + destination + " --loud", 2, "--loud"},
        {"run --meters 7", 2, "--meters"},
        {"render --input none.wav" + destination, 1, "none.wav"},
        {input + " --output /no/such/folder/out.wav", 1, "out.wav"}};
    for (const auto& [arguments, exitCode, says] : cases) {
        EXPECT_EQ(exitCodeOf(arguments), exitCode) << arguments;
        const std::string message = errors();
        EXPECT_THAT(message, MatchesRegex("orvane-cli: [^\n]+\n")) << arguments;
        EXPECT_THAT(message, HasSubstr(says)) << arguments;
        EXPECT_EQ(output(), "") << arguments;
    }
}

TEST_F(Program, HelpsAndRendersWithNothingOnStandardError) {
    const std::pair<std::string, const char*> cases[] = {
        {"--help", "render"},
        {"--version", "orvane-cli "},
        {"render --help", "--stems"},
        {"plugins", "MDA Limiter"},
        {"plugins --json", R"("name": "MDA Limiter")"},
        {std::string("render --input ") + panel + " --output '" + (folder / "out.wav").string() + "'",
         "times real time"}};
    for (const auto& [arguments, says] : cases) {
        EXPECT_EQ(exitCodeOf(arguments), 0) << arguments;
        EXPECT_THAT(output(), HasSubstr(says)) << arguments;
        EXPECT_EQ(errors(), "") << arguments;
    }
    const std::string onTerminal = fmt::format(
        "script -qec \"{} render --input {} --output '{}'\" /dev/null", program, panel,
        (folder / "out.wav").string()
    );
    EXPECT_EQ(exitCodeOfShell(onTerminal), 0);
    EXPECT_THAT(output(), HasSubstr("]   0%"));
}

TEST_F(Program, ReportsThatItsResultCannotBeWritten) {
    const auto session =
        folder.add("empty.orvane", R"({"channels": [], "masterTargetDB": -12, "bufferSize": 512,
        "snapshots": []})");
    for (const std::string& arguments :
         {std::string("--help"), std::string("--version"), std::string("devices"),
          std::string("devices --json"), std::string("midi"), std::string("midi --json"),
          std::string("plugins"), std::string("plugins --json"),
          std::string("render --input ") + panel + " --output '" + (folder / "out.wav").string() + "'",
          "session '" + session.string() + "'"}) {
        EXPECT_EQ(exitCodeOf(arguments + " >/dev/full"), 1) << arguments;
        EXPECT_EQ(errors(), "orvane-cli: The result could not be written: No space left on device.\n")
            << arguments;
    }
}

TEST_F(Program, IsSilentIfTheReaderOfItsResultIsGone) {
    const std::string closedPipe =
        fmt::format("mkfifo {0}; exec 4<>{0} 3>{0} 4>&-; ", (folder / "pipe").string());
    EXPECT_EQ(exitCodeOfShell(closedPipe + program + " plugins >&3"), 0);
    EXPECT_EQ(errors(), "");
}

TEST_F(Program, RendersFromAndToPipesAndCanBeInterruptedThere) {
    const std::string render = program + " render --input ";
    const std::string piped = (folder / "piped.wav").string();
    const std::string direct = (folder / "direct.wav").string();
    const std::string command = fmt::format(
        "cat {0} | {1} - --output - | {1} - --outputs 3 --output {2} && {1} {0} --output {3} && "
        "{1} {3} --outputs 3 --output {3}.again.wav && cmp {2} {3}.again.wav && {1} {0} --output - > {3}.raw",
        panel, render, piped, direct
    );
    EXPECT_EQ(exitCodeOfShell(command), 0) << errors();
    const std::string stream = contentOf(direct + ".raw");
    EXPECT_EQ(stream.substr(0, 8), "RIFF\xFF\xFF\xFF\xFF");
    EXPECT_TRUE(stream.ends_with(contentOf(direct).substr(200))) << "the same samples";

    // A pipe without a writer or a reader. The program has started once it catches SIGINT; the shell that it
    // replaces may catch it too.
    const std::string pipe = fmt::format("rm -f {0}; mkfifo {0}; exec 4<>{0}; ", (folder / "pipe").string());
    const std::string interrupt =
        " & until [ ! -d /proc/$! ] || { grep -q '^orvane-cli' /proc/$!/comm && "
        "grep -q 'SigCgt:.*[2367abef]$' /proc/$!/status; }; do :; done; kill -INT $!; wait $!";
    for (const std::string& stalled :
         {fmt::format("env --default-signal=INT {} - --output '{}' <&4", render, piped),
          fmt::format("env --default-signal=INT {}{} --output - >&4", render, panel)}) {
        EXPECT_EQ(exitCodeOfShell(fmt::format("{}{}{}", pipe, stalled, interrupt)), 1) << stalled;
        EXPECT_THAT(errors(), MatchesRegex("orvane-cli: [^\n]*(interrupted|Stopped|canceled)[^\n]*\n"));
    }
    EXPECT_EQ(exitCodeOf("render --input '" + (folder / "pipe").string() + "' --output '" + piped + "'"), 1);
    EXPECT_THAT(errors(), HasSubstr("it is not a regular file"));
}

TEST_F(Program, MakesNoWorldWritableFiles) {
    namespace fs = std::filesystem;
    const std::string command = std::string("umask 0; XDG_DATA_HOME='") + (folder / "data").string() + "' "
                                + program + " render --input " + panel + " --output '"
                                + (folder / "mix.wav").string() + "' --stems '" + (folder / "stems").string()
                                + "' --report '" + (folder / "report.json").string() + "'";
    EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 0);
    EXPECT_THAT(folder.names(), testing::IsSupersetOf({"mix.wav", "stems", "report.json"}));
    for (const auto& entry : fs::recursive_directory_iterator(folder / ""))
        EXPECT_EQ(entry.status().permissions() & fs::perms::others_write, fs::perms::none) << entry.path();
}

TEST_F(Program, NeverSendsControlCharactersOfNamesToTheTerminal) {
    const auto session = sessionNamed(R"(\u001b[2J\u009b1m\u0007Ann\u00e4)");
    const std::string named = folder / "\x1b[2J.wav";
    for (const std::string& arguments :
         {"render --session " + session.string() + " --input " + panel + " --output "
              + (folder / "out.wav").string(),
          "run --device virtual:panel --meters text --seconds 0.1 --session " + session.string(),
          "render --output out.wav --input '" + named + "'"}) {
        static_cast<void>(exitCodeOf(arguments));
        const std::string said = output() + errors();
        EXPECT_THAT(said, HasSubstr("?[2J")) << arguments;
        EXPECT_EQ(said.find_first_of("\x1b\x07\x9b"), std::string::npos) << arguments;
    }
}

TEST_F(Program, EscapesOnlyControlCharactersOfJSONOnATerminal) {
    // NOLINTNEXTLINE(misc-misleading-bidirectional)
    const std::string name = "\x7f\u0080\u009b1m\u00a0\u00e4\u2027\u2028\u202e\u202f\u2065\u2066\u2069\u206a";
    const std::string escaped = R"(\u007f\u0080\u009b1m)"
                                "\u00a0\u00e4\u2027"
                                R"(\u2028\u202e)"
                                "\u202f\u2065"
                                R"(\u2066\u2069)"
                                "\u206a";
    const auto session = sessionNamed(name);
    for (const std::string arguments :
         {"session ", "run --device virtual:panel --meters json --seconds 0.1 --session "}) {
        const std::string command = fmt::format("{} {}{}", program, arguments, session.string());
        EXPECT_EQ(exitCodeOfShell(command), 0);
        EXPECT_THAT(output(), HasSubstr(name)) << arguments;
        EXPECT_EQ(exitCodeOfShell("script -qec '" + command + "' /dev/null"), 0);
        EXPECT_THAT(output(), HasSubstr(escaped)) << arguments;
    }
}

using Session = Program;

TEST_F(Session, IsPrintedAsItWouldBeSaved) {
    const auto file = folder.add(
        "old.orvane", R"({"channels": [{"name": "A", "outputRouting": {"none": {}}, "genderMode": "male",
            "muted": false, "bypassed": false, "trim": 0.5}], "masterTargetDB": -12, "bufferSize": 100,
            "snapshots": [], "comment": "unknown"})"
    );
    const std::string command = "session --channels 2 ";
    EXPECT_EQ(exitCodeOf(command + file.string()), 0);
    const std::string printed = output();
    const auto document = nlohmann::json::parse(printed);
    EXPECT_EQ(document["channels"].size(), 2U);
    EXPECT_EQ(document["channels"][0]["trim"], 0.5);
    EXPECT_EQ(document["channels"][1]["name"], "Ch 2");
    EXPECT_EQ(document["bufferSize"], 512);
    EXPECT_EQ(document["duckerReleaseMs"], 400.0);
    EXPECT_FALSE(document.contains("comment"));
    const auto again = folder.add("again.orvane", printed);
    EXPECT_EQ(exitCodeOf("session " + again.string()), 0);
    EXPECT_EQ(output(), printed);

    const auto bad = folder.add("bad.orvane", "{}");
    EXPECT_EQ(exitCodeOf(command + bad.string()), 1);
    EXPECT_THAT(errors(), MatchesRegex("orvane-cli: Couldn't read that settings file: [^\n]+\n"));
}

} // namespace
