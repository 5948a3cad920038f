#include "cli/command_line.h"

#include "cli/printing.h"
#include "cli/render.h"
#include "engine/mixer_engine.h"
#include "engine/session/channel_strip.h"
#include "engine/session/mixer_document_codec.h"
#include "engine/session_files.h"
#include "platform/audio_hardware/system_audio_hardware.h"
#include "platform/base/run_loop.h"
#include "platform/base/system_log.h"
#include "platform/effects/audio_unit_host.h"
#include "platform/midi_services/system_midi_services.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace orvane::cli {

namespace {

constexpr std::int64_t newBufferSize = 512;

struct SessionOptions {
    std::filesystem::path file = {};
    std::optional<std::size_t> channels = {};
    /// The number of strips of a new session.
    std::optional<std::size_t> newStrips = {};
    bool force = false;
};

/// The same mix that `run` and `render` make without a session: every strip has the input of its own number
/// and goes to the master bus, which goes to outputs 1 and 2.
session::MixerDocumentData newSession(std::size_t stripCount) {
    session::MixerDocumentData document{.bufferSize = newBufferSize};
    document.channels = session::settingsOf(session::makeDefaultStrips(stripCount));
    for (std::size_t i = 0; i < stripCount; ++i)
        document.channels[i].inputChannelIndex = static_cast<std::int64_t>(i);
    document.master.masterOutputRouting = session::master_output::Stereo{0, 1};
    return document;
}

int makeSession(const SessionOptions& options) {
    if (!options.force && std::filesystem::exists(options.file))
        return fail(fmt::format(
            "{} already exists; choose another name, or use --force to replace it.", options.file.string()
        ));
    const auto written = engine::exportSession(newSession(*options.newStrips), options.file);
    return written ? 0 : fail(written.error().description);
}

/// A computer without effects.
class NoAudioUnits final : public platform::AudioUnitHost {
  public:
    [[nodiscard]] std::vector<platform::AVAudioUnitComponent>
    componentsMatchingDescription(const platform::AudioComponentDescription&) override {
        return {};
    }

    void instantiate(
        const platform::AudioComponentDescription&, std::uint32_t, InstantiationCompletion completion
    ) override {
        completion(nullptr, platform::Error{"There are no plugins here"});
    }
};

/// Returns what an export would write after an import.
platform::Result<std::string> reexport(const SessionOptions& options) {
    const auto document = engine::readSession(options.file);
    if (!document) return document.error();
    platform::SystemAudioHardware hardware({});
    platform::SystemMIDIServices noMIDI({});
    platform::RunLoop loop;
    platform::SystemLog log(platform::standardErrorSink());
    // Messages about the session's plugins are printed, but no plugin is loaded.
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
    return text ? printResult(text.value()) : fail(text.error().description);
}

} // namespace

void addSessionCommand(CLI::App& program, Action& action) {
    const auto options = std::make_shared<SessionOptions>();
    CLI::App* const command =
        program.add_subcommand("session", "Print a session file as it would be saved, or make one");
    command->footer("Missing settings appear with their defaults; unknown ones are left out.");
    command->add_option("FILE", options->file, "Session file (.orvane)")->required();
    command
        ->add_option(
            "--channels", options->channels, "Number of strips to load it into; otherwise the file's"
        )
        ->check(CLI::Range(std::size_t{1}, mostRenderChannels));
    CLI::Option* const strips =
        command->add_option("--new", options->newStrips, "Make a session with this number of strips instead")
            ->check(CLI::Range(std::size_t{1}, mostRenderChannels));
    command->add_flag("--force", options->force, "Replace an existing file")->needs(strips);
    command->callback([options, &action] {
        action = [options] { return options->newStrips ? makeSession(*options) : printSession(*options); };
    });
}

} // namespace orvane::cli
