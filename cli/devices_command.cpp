#include "cli/command_line.h"

#include "cli/printing.h"
#include "engine/mixer_engine.h"
#include "machine/audio_machine.h"
#include "platform/base/plain_text.h"
#include "platform/base/realtime_priority.h"
#include "platform/base/run_loop.h"
#include "platform/midi_services/system_midi_services.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <memory>
#include <string>
#include <vector>

namespace orvane::cli {

namespace {

struct DevicesOptions {
    machine::AudioMachineOptions machine = {};
    bool asJSON = false;
};

/// The real-time priority that audio threads get, as a number and as a line.
struct Priority {
    int value;
    std::string sentence;
};

Priority priorityOn(machine::AudioMachine& machine) {
    if (const int own = platform::obtainableRealtimePriority(); own > 0)
        return {
            own, fmt::format("Audio threads of ALSA and virtual devices get real-time priority {}.\n", own)};
    if (const int lent = machine.priorityLender().obtainable(); lent > 0)
        return {
            lent,
            fmt::format("Audio threads of ALSA devices get real-time priority {} from RealtimeKit.\n", lent)};
    return {0, "Audio threads of ALSA and virtual devices get no real-time priority here.\n"};
}

std::string deviceTable(const std::vector<audio::AudioDeviceInfo>& devices, const Priority& priority) {
    std::string table = fmt::format("{:<28} {:<32} {:>3} {:>4} {:>8}\n", "uid", "name", "in", "out", "Hz");
    for (const audio::AudioDeviceInfo& device : devices)
        table += fmt::format(
            "{:<28} {:<32} {:>3} {:>4} {:>8.0f}\n", platform::plainText(device.uid),
            platform::plainText(device.name), device.inputChannelCount, device.outputChannelCount,
            device.sampleRate
        );
    table += priority.sentence;
    return table;
}

std::string devicesAsJSON(const std::vector<audio::AudioDeviceInfo>& devices, const Priority& priority) {
    nlohmann::json document = {{"realtimePriority", priority.value}, {"devices", nlohmann::json::array()}};
    for (const audio::AudioDeviceInfo& device : devices)
        document["devices"].push_back(
            {{"uid", device.uid},
             {"name", device.name},
             {"inputChannelCount", device.inputChannelCount},
             {"outputChannelCount", device.outputChannelCount},
             {"sampleRate", device.sampleRate}}
        );
    return jsonText(document);
}

int listDevices(const DevicesOptions& options) {
    auto machine = machine::AudioMachine::make(options.machine);
    if (!machine) return fail(machine.error().description);
    platform::RunLoop loop;
    machine::AudioMachine& audioMachine = *machine.value();
    platform::SystemMIDIServices noMIDI({});
    engine::MixerEngine engine(
        0, {audioMachine.hardware(), noMIDI, loop, audioMachine.audioUnits(), audioMachine.log}
    );
    engine.refreshDevices();
    if (const auto& error = engine.state().lastError.get()) return fail(*error);
    const auto text = options.asJSON ? devicesAsJSON : deviceTable;
    return printResult(text(engine.state().availableDevices.get(), priorityOn(audioMachine)));
}

} // namespace

void addDevicesCommand(CLI::App& program, Action& action) {
    const auto options = std::make_shared<DevicesOptions>();
    CLI::App* const command = program.add_subcommand("devices", "List the audio devices");
    command->add_flag("--json", options->asJSON, "Print one JSON object");
    command->add_option(
        "--virtual-input", options->machine.virtualInput, "Sound file that a virtual device plays"
    );
    command->callback([options, &action] { action = [options] { return listDevices(*options); }; });
}

} // namespace orvane::cli
