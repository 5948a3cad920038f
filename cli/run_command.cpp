#include "cli/command_line.h"

#include "audio/insert_workers.h"
#include "cli/live_run.h"
#include "engine/buffer_sizes.h"

#include <CLI/CLI.hpp>

#include <iterator>
#include <map>
#include <memory>
#include <vector>

namespace orvane::cli {

void addRunCommand(CLI::App& program, Action& action) {
    const auto options = std::make_shared<LiveRunOptions>();
    CLI::App* const command = program.add_subcommand("run", "Mix live without a window");
    command->footer(
        "SIGINT (Ctrl-C), SIGTERM and SIGHUP end the run; SIGUSR1 saves the session to its file. Without a "
        "session every input of the device has a strip, and the master bus goes to outputs 1 and 2. "
        "ORVANE_DRIVERS=pipewire,jack,alsa,virtual limits the drivers."
    );
    command->add_option("--session", options->session, "Session that sets up the mix");
    command
        ->add_option(
            "--channels", options->channels, "Number of strips; otherwise the session's or the device's"
        )
        ->check(CLI::Range(1, 48));
    command->add_option(
        "--device", options->machine.device, "Uid of the device; otherwise the first usable one"
    );
    command->add_option(
        "--master-device", options->masterDevice, "Uid of a device of its own for the master bus"
    );
    command
        ->add_option(
            "--buffer-size", options->bufferSize,
            "Frames per block; otherwise the session's or the device's present ones"
        )
        ->check(CLI::IsMember(
            std::vector<std::int64_t>(std::begin(engine::bufferSizes), std::end(engine::bufferSizes))
        ));
    addOutputOptions(*command, options->outputOverrides);
    command->add_option("--rate", options->machine.sampleRate, "Sample rate in Hz; otherwise the device's")
        ->check(CLI::Range(machine::lowestSampleRate, machine::highestSampleRate));
    command
        ->add_option(
            "--insert-workers", options->insertWorkers,
            "Real-time threads that share the work of the plugins; otherwise none"
        )
        ->check(CLI::Range(std::size_t{0}, audio::InsertWorkers::most));
    command->add_option("--midi-source", options->midiSource, "Id of the MIDI source; otherwise all of them");
    command->add_option(
        "--learn", options->learn, "Number of the snapshot that the next note recalls from then on"
    );
    command->add_flag(
        "--force", options->force,
        "Save even over a session file that is write-protected or was changed by another program"
    );
    command->add_option("--seconds", options->seconds, "How long to run; otherwise until a signal")
        ->check(CLI::PositiveNumber);
    const std::map<std::string, MeterStyle> meterStyles = {
        {"text", MeterStyle::text}, {"json", MeterStyle::json}, {"none", MeterStyle::none}};
    command
        ->add_option_function<std::string>(
            "--meters",
            [options, meterStyles](const std::string& word) { options->meters = meterStyles.at(word); },
            "text, json (an object per line) or none"
        )
        ->check(CLI::IsMember(meterStyles));
    command->add_option(
        "--virtual-input", options->machine.virtualInput, "Sound file that a virtual device plays"
    );
    command->add_option(
        "--record", options->machine.record, "Sound file for the outputs of a virtual device"
    );
    command->callback([options, &action] { action = [options] { return runLive(*options); }; });
}

} // namespace orvane::cli
