#include "cli/session_command.h"

#include "cli/message.h"
#include "cli/no_audio_units.h"
#include "cli/print_result.h"
#include "cli/render.h"
#include "engine/mixer_engine.h"
#include "engine/session/mixer_document_encoder.h"
#include "engine/session_files.h"
#include "platform/audio_hardware/system_audio_hardware.h"
#include "platform/midi_services/system_midi_services.h"
#include "platform/run_loop.h"
#include "platform/system_log.h"

#include <CLI/CLI.hpp>

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace orvane::cli {

namespace {

struct SessionOptions {
    std::filesystem::path file = {};
    std::optional<std::size_t> channels = {};
};

/// What an export would write after an import.
platform::Result<std::string> reexport(const SessionOptions& options) {
    const auto document = engine::readSession(options.file);
    if (!document) return document.error();
    platform::SystemAudioHardware hardware({});
    platform::SystemMIDIServices noMIDI({});
    platform::RunLoop loop;
    platform::SystemLog log(platform::standardErrorSink());
    // What a session says of its plugins is printed; none is loaded for that.
    NoAudioUnits audioUnits;
    engine::MixerEngine engine(
        options.channels.value_or(document.value().channels.size()), {hardware, noMIDI, loop, audioUnits, log}
    );
    if (auto loaded = engine.loadDocument(document.value()); !loaded) return loaded.error();
    auto encoded = session::encodeMixerDocument(engine.makeDocumentData());
    if (!encoded) return platform::Error{"Export failed: " + encoded.error().description};
    return encoded;
}

int printSession(const SessionOptions& options) {
    const auto text = reexport(options);
    if (!text) {
        printMessage(text.error().description);
        return 1;
    }
    return printResult(text.value());
}

} // namespace

void addSessionCommand(CLI::App& program, Action& action) {
    const auto options = std::make_shared<SessionOptions>();
    CLI::App* const command =
        program.add_subcommand("session", "Load a session file and print it as it would be saved");
    command->footer("Settings that the file lacks appear with their defaults; what is unknown is left out.");
    command->add_option("FILE", options->file, "Session file (.orvane)")->required();
    command
        ->add_option(
            "--channels", options->channels, "Number of strips to load it into; otherwise the file's"
        )
        ->check(CLI::Range(std::size_t{1}, mostRenderChannels));
    command->callback([options, &action] { action = [options] { return printSession(*options); }; });
}

} // namespace orvane::cli
