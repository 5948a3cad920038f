#include "app/command_line.h"

#include "audio/insert_workers.h"
#include "engine/buffer_sizes.h"
#include "machine/process.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <cstdint>
#include <iterator>
#include <vector>

namespace orvane::app {

namespace {

constexpr int wrongUsage = 2;
constexpr std::int64_t mostStrips = 48;

void addOptions(CLI::App& program, CommandLine& line) {
    program.add_option("FILE", line.session, "Session to open (.orvane)");
    program
        .add_option(
            "--channels", line.launch.channels, "Number of strips; otherwise the session's or the chosen one"
        )
        ->check(CLI::Range(std::int64_t{1}, mostStrips));
    program.add_option("--device", line.machine.device, "Uid of the audio device");
    program.add_option(
        "--master-device", line.launch.masterDevice, "Uid of a device of its own for the master bus"
    );
    program
        .add_option(
            "--buffer-size", line.launch.bufferSize, "Frames per block; otherwise the session's or 512"
        )
        ->check(CLI::IsMember(
            std::vector<std::int64_t>(std::begin(engine::bufferSizes), std::end(engine::bufferSizes))
        ));
    program.add_option("--rate", line.machine.sampleRate, "Sample rate in Hz; otherwise the device's")
        ->check(CLI::Range(machine::lowestSampleRate, machine::highestSampleRate));
    program
        .add_option(
            "--insert-workers", line.insertWorkers,
            "Real-time threads that share the work of the plugins; otherwise none"
        )
        ->check(CLI::Range(std::size_t{0}, audio::InsertWorkers::most));
    program.add_flag(
        "--start", line.launch.start, "Start audio, on the first usable device if none is named"
    );
    program.add_option(
        "--virtual-input", line.machine.virtualInput, "Sound file that a virtual device plays"
    );
    program.add_option("--record", line.machine.record, "Sound file for the outputs of a virtual device");
}

} // namespace

std::variant<CommandLine, int> readCommandLine(int argc, const char* const* argv) {
    CommandLine line;
    CLI::App program("ORVANE, a live automatic microphone mixer", "orvane");
    program.set_version_flag("--version", "orvane " ORVANE_VERSION);
    program.footer("orvane-cli devices lists the audio devices; orvane-cli run mixes without a window. "
                   "ORVANE_DRIVERS=pipewire,jack,alsa,virtual limits the drivers.");
    addOptions(program, line);
    try {
        program.parse(argc, argv);
    } catch (const CLI::Success& asked) {
        return program.exit(asked);
    } catch (const CLI::ParseError& error) {
        printMessage(fmt::format("{} (see --help)", error.what()));
        return wrongUsage;
    }
    return line;
}

void printMessage(std::string_view sentence) {
    machine::printMessage("orvane", sentence);
}

} // namespace orvane::app
