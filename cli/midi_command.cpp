#include "cli/command_line.h"

#include "cli/midi_send.h"
#include "cli/printing.h"
#include "engine/mixer_engine.h"
#include "machine/audio_machine.h"
#include "platform/base/plain_text.h"
#include "platform/base/run_loop.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <memory>
#include <string>
#include <vector>

namespace orvane::cli {

namespace {

using Sources = std::vector<midi::MIDIDeviceInfo>;

constexpr double defaultSeconds = 10.0;

struct MIDIOptions {
    bool asJSON = false;
    std::string note = {};
    double seconds = defaultSeconds;
};

std::string sourceTable(const Sources& sources) {
    std::string table = fmt::format("{:>11}  {}\n", "id", "name");
    for (const midi::MIDIDeviceInfo& source : sources)
        table += fmt::format("{:>11}  {}\n", source.id, platform::plainText(source.name));
    return table;
}

std::string sourcesAsJSON(const Sources& sources) {
    nlohmann::json document = {{"sources", nlohmann::json::array()}};
    for (const midi::MIDIDeviceInfo& source : sources)
        document["sources"].push_back({{"id", source.id}, {"name", source.name}});
    return jsonText(document);
}

int listSources(const MIDIOptions& options) {
    const auto machine = machine::AudioMachine::make({});
    if (!machine) return fail(machine.error().description);
    platform::RunLoop loop;
    machine::AudioMachine& services = *machine.value();
    const engine::MixerEngine engine(
        0, {services.hardware(), services.midi(), loop, services.audioUnits(), services.log}
    );
    const auto text = options.asJSON ? sourcesAsJSON : sourceTable;
    return printResult(text(engine.state().availableMIDIDevices.get()));
}

int send(const MIDIOptions& options) {
    // The note was validated when the arguments were parsed.
    const auto sent = sendNote(parseNote(options.note).value(), options.seconds);
    return sent ? 0 : fail(sent.error().description);
}

std::string checkNote(const std::string& text) {
    const auto note = parseNote(text);
    return note ? std::string() : note.error().description;
}

} // namespace

void addMIDICommand(CLI::App& program, Action& action) {
    const auto options = std::make_shared<MIDIOptions>();
    CLI::App* const command = program.add_subcommand("midi", "List the MIDI sources, or send a note");
    command->footer(
        "Ids stay the same when a source is connected again and after a reboot. With --send the program is "
        "itself a source, \"note\", until the note-on and the note-off are sent. It waits for a program to "
        "connect; a running mixer that listens to all sources does so at once. Channels count from 1. "
        "ORVANE_DRIVERS=pipewire,jack,alsa limits the MIDI drivers."
    );
    command->add_flag("--json", options->asJSON, "Print one JSON object");
    CLI::Option* const note =
        command->add_option("--send", options->note, "Send a note-on: CHANNEL:NOTE or CHANNEL:NOTE:VELOCITY")
            ->check(CLI::Validator(checkNote, ""));
    command
        ->add_option("--seconds", options->seconds, "Seconds to wait for a program to connect; otherwise 10")
        ->check(CLI::PositiveNumber)
        ->needs(note);
    command->callback([options, note, &action] {
        const bool isToSend = note->count() > 0;
        action = [options, isToSend] { return isToSend ? send(*options) : listSources(*options); };
    });
}

} // namespace orvane::cli
