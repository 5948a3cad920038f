#include "cli/devices_command.h"
#include "cli/message.h"
#include "cli/midi_command.h"
#include "cli/plugins_command.h"
#include "cli/render_command.h"
#include "cli/run_command.h"
#include "cli/session_command.h"
#include "machine/process.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <new>

namespace {

constexpr int wrongUsage = 2;

} // namespace

int main(int argc, char** argv) {
    orvane::machine::prepareProcess();
    int exitCode = 0;
    CLI::App program("ORVANE, a live automatic microphone mixer", "orvane-cli");
    program.set_version_flag("--version", "orvane-cli " ORVANE_VERSION);
    // One is required, but an unknown word is to be named rather than called missing.
    program.require_subcommand(0, 1);
    orvane::cli::addDevicesCommand(program, exitCode);
    orvane::cli::addMIDICommand(program, exitCode);
    orvane::cli::addPluginsCommand(program, exitCode);
    orvane::cli::addRenderCommand(program, exitCode);
    orvane::cli::addRunCommand(program, exitCode);
    orvane::cli::addSessionCommand(program, exitCode);
    try {
        program.parse(argc, argv);
        if (program.get_subcommands().empty()) throw CLI::RequiredError("A subcommand");
    } catch (const CLI::Success& asked) {
        return program.exit(asked);
    } catch (const CLI::ParseError& error) {
        orvane::cli::printMessage(fmt::format("{} (--help tells more)", error.what()));
        return wrongUsage;
    } catch (const std::bad_alloc&) {
        orvane::cli::printMessage("There is not enough memory for this.");
        return 1;
    }
    return exitCode;
}
