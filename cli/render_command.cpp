#include "cli/render_command.h"

#include "cli/message.h"
#include "cli/print_result.h"
#include "cli/progress_bar.h"
#include "cli/render.h"
#include "engine/show.h"
#include "machine/interrupt.h"

#include <CLI/CLI.hpp>

#include <iterator>
#include <memory>

namespace orvane::cli {

namespace {

int runRender(const RenderOptions& options) {
    const machine::InterruptGuard interrupt;
    auto bar = std::make_unique<ProgressBar>();
    const RenderObserver observer{
        .warn = [](std::string_view sentence) { printMessage(sentence); },
        .progress = [&bar](double fraction) { bar->update(fraction); },
        .isCancelled = [&interrupt] { return interrupt.isInterrupted(); }};
    const platform::Result<RenderReport> report = render(options, observer);
    bar.reset();
    if (!report) {
        printMessage(report.error().description);
        return 1;
    }
    return printResult(report.value().text());
}

} // namespace

void addRenderCommand(CLI::App& program, Action& action) {
    const auto options = std::make_shared<RenderOptions>();
    CLI::App* const command = program.add_subcommand("render", "Mix a sound file, faster than real time");
    command->footer("Every channel of the input is one microphone. The output carries what the outputs of an "
                    "interface would: 32-bit float WAV, RF64 beyond 4 GB, W64 where the name ends in .w64.");
    command->add_option("--input", options->input, "Sound file whose channels are the inputs")->required();
    command->add_option("--output", options->output, "Sound file for the outputs")->required();
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
    command->add_option("--stems", options->stems, "Folder for one file per strip: its automixed signal");
    command->add_option("--report", options->report, "JSON file for gains, levels, time and load");
    command->callback([options, &action] { action = [options] { return runRender(*options); }; });
}

} // namespace orvane::cli
