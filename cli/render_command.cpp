#include "cli/command_line.h"

#include "cli/printing.h"
#include "cli/progress_bar.h"
#include "cli/render.h"
#include "cli/standard_input.h"
#include "engine/buffer_sizes.h"
#include "machine/forced_end.h"
#include "machine/signals.h"

#include <CLI/CLI.hpp>

#include <cstdlib>
#include <iterator>
#include <memory>

namespace orvane::cli {

namespace {

int runRender(const RenderOptions& options) {
    machine::EndDeadline deadline;
    const machine::InterruptGuard interrupt;
    auto bar = std::make_unique<ProgressBar>();
    const RenderObserver observer{
        .warn = [](std::string_view sentence) { printMessage(sentence); },
        .progress = [&bar](double fraction) { bar->update(fraction); },
        .isCancelled = [&interrupt] { return interrupt.isInterrupted(); },
        .written = [&deadline] { deadline.arm(EXIT_SUCCESS); }};
    const platform::Result<RenderReport> report = render(options, observer);
    bar.reset();
    if (!report) return fail(report.error().description);
    // Text after the sound on standard output would be read as sound.
    return options.output == standardStream ? 0 : printResult(report.value().text());
}

} // namespace

void addRenderCommand(CLI::App& program, Action& action) {
    const auto options = std::make_shared<RenderOptions>();
    CLI::App* const command = program.add_subcommand("render", "Mix a sound file, faster than real time");
    command->footer("Every channel of the input is one microphone. The output carries what the outputs of an "
                    "interface would, in the format that its name ends in: .wav (RF64 beyond 4 GB), .w64, "
                    ".rf64 and .aiff with 32-bit float samples, .flac with 24 bits and up to 8 outputs.");
    command
        ->add_option(
            "--input", options->input, "Sound file whose channels are the inputs; - is standard input"
        )
        ->required();
    command
        ->add_option(
            "--output", options->output, "Sound file for the outputs; - writes a WAV to standard output"
        )
        ->required();
    command->add_option(
        "--session", options->session, "Session that sets up the mix; otherwise every input has a strip"
    );
    command
        ->add_option(
            "--channels", options->channels, "Number of strips; otherwise the session's or the input's"
        )
        ->check(CLI::Range(std::size_t{1}, mostRenderChannels));
    command
        ->add_option(
            "--outputs", options->outputs, "Number of outputs; otherwise enough for all in use, at least 2"
        )
        ->check(CLI::Range(std::size_t{1}, mostRenderChannels));
    command
        ->add_option("--buffer-size", options->bufferSize, "Frames per block; otherwise the session's or 512")
        ->check(CLI::IsMember(
            std::vector<std::int64_t>(std::begin(engine::bufferSizes), std::end(engine::bufferSizes))
        ));
    addOutputOptions(*command, options->outputOverrides);
    command->add_option("--stems", options->stems, "Folder for one file per strip: its automixed signal");
    command->add_option("--report", options->report, "JSON file for gains, levels, time and load");
    command->callback([options, &action] { action = [options] { return runRender(*options); }; });
}

} // namespace orvane::cli
