#include "cli/command_line.h"

#include "cli/printing.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <sstream>

namespace orvane::cli {

namespace {

constexpr int wrongUsage = 2;

} // namespace

std::variant<Action, int> readCommandLine(int argc, const char* const* argv) {
    Action action;
    CLI::App program("ORVANE, a live automatic microphone mixer", "orvane-cli");
    program.set_version_flag("--version", "orvane-cli " ORVANE_VERSION);
    // Required, but checked below: an unknown word must be reported as such, not as a missing subcommand.
    program.require_subcommand(0, 1);
    addDevicesCommand(program, action);
    addMIDICommand(program, action);
    addPluginsCommand(program, action);
    addRenderCommand(program, action);
    addRunCommand(program, action);
    addSessionCommand(program, action);
    try {
        program.parse(argc, argv);
        if (program.get_subcommands().empty()) throw CLI::RequiredError("A subcommand");
    } catch (const CLI::Success& asked) {
        std::ostringstream text;
        program.exit(asked, text, text);
        return printResult(text.str());
    } catch (const CLI::ParseError& error) {
        printMessage(fmt::format("{} (see --help)", error.what()));
        return wrongUsage;
    }
    return action;
}

} // namespace orvane::cli
