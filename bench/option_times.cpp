#include "block_times.h"
#include "parts.h"
#include "reference_conditions.h"

#include "dsp/output_options.h"
#include "dsp/true_peak_limiter.h"

#include <fmt/format.h>

#include <iterator>
#include <memory>
#include <utility>

namespace orvane::bench {

namespace {

constexpr double micro = 1e6;
constexpr int rounds = 4000;

/// Prints the median times of the pass without options and with these, block by block in turn.
void printOptions(const char* name, std::size_t frames, const dsp::OutputOptions& options) {
    ReferenceConditions plain({.frames = frames});
    ReferenceConditions show({.frames = frames});
    show.fastAutomix().setOutputOptions(options);
    show.fastState().limiter = std::make_unique<dsp::TruePeakLimiter>(ReferenceConditions::sampleRate);
    show.fastState().limiter->setCeiling(options.limiterCeilingDBTP);
    BlockTimes without;
    BlockTimes with;
    for (int round = 0; round < rounds; ++round) {
        without.measure([&plain] { plain.runFast(); });
        with.measure([&show] { show.runFast(); });
    }
    const double before = without.within(0.5);
    const double after = with.within(0.5);
    fmt::print(
        "{:<30}{:>7}{:>11.2f}{:>11.2f}{:>9.2f}x\n", name, frames, before * micro, after * micro,
        after / before
    );
}

} // namespace

void printOptionTimes() {
    fmt::print(
        "\nThe render pass of 48 strips without and with output options, in microseconds.\n"
        "{:<30}{:>7}{:>11}{:>11}{:>10}\n",
        "options", "frames", "without", "with", "ratio"
    );
    const std::pair<const char*, dsp::OutputOptions> cases[] = {
        {"hold", {.leveler = dsp::LevelerMode::hold}},
        {"gain ramps", {.gainRamps = true}},
        {"open-microphone limit", {.openMicrophoneLimit = true}},
        {"fast onset", {.fastOnset = true}},
        {"limiter, working", {.limiterCeilingDBTP = -20.0}},
        {"all", {dsp::LevelerMode::hold, true, true, true, -20.0}}};
    for (const auto& [name, options] : cases)
        printOptions(name, 64, options);
    printOptions("all", 512, std::end(cases)[-1].second);
}

} // namespace orvane::bench
