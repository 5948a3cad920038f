#include "cli/output_overrides.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <string>

namespace orvane::cli {

namespace {

constexpr const char* noLimiter = "off";

/// Returns what is wrong with a ceiling; empty if it is valid.
std::string checkCeiling(const std::string& word) {
    double ceiling = 0.0;
    if (word == noLimiter) return {};
    if (CLI::detail::lexical_cast(word, ceiling) && ceiling >= dsp::lowestCeilingDBTP
        && ceiling <= dsp::highestCeilingDBTP)
        return {};
    return fmt::format(
        "{} is neither a ceiling from {} to {} dB nor {}", word, dsp::lowestCeilingDBTP,
        dsp::highestCeilingDBTP, noLimiter
    );
}

} // namespace

dsp::OutputOptions OutputOverrides::appliedTo(dsp::OutputOptions options) const {
    options.leveler = leveler.value_or(options.leveler);
    options.gainRamps = gainRamps.value_or(options.gainRamps);
    options.openMicrophoneLimit = openMicrophoneLimit.value_or(options.openMicrophoneLimit);
    options.fastOnset = fastOnset.value_or(options.fastOnset);
    options.limiterCeilingDBTP = limiterCeilingDBTP.value_or(options.limiterCeilingDBTP);
    return options;
}

void addOutputOptions(CLI::App& command, OutputOverrides& overrides) {
    const std::string group = "Output options, which override the session's";
    command
        .add_option_function<std::string>(
            "--leveler",
            [&overrides](const std::string& word) { overrides.leveler = dsp::levelerModeFromRawValue(word); },
            "follow: towards the target, in pauses too; hold: stands still in pauses; off"
        )
        ->check(CLI::IsMember(
            std::vector<std::string>(dsp::levelerModeNames.begin(), dsp::levelerModeNames.end())
        ))
        ->group(group);
    command
        .add_option_function<std::string>(
            "--limiter",
            [&overrides](const std::string& word) {
                overrides.limiterCeilingDBTP =
                    word == noLimiter ? std::nullopt : std::optional(std::stod(word));
            },
            "Ceiling of the outputs that carry the master bus, in dB true peak, -20 to 0; or off"
        )
        ->check(CLI::Validator(checkCeiling, "DBTP"))
        ->group(group);
    const auto addFlag = [&](const std::string& name, std::optional<bool>& value, const std::string& help) {
        command
            .add_flag_function(
                fmt::format("--{0},!--no-{0}", name), [&value](std::int64_t count) { value = count > 0; },
                help
            )
            ->group(group);
    };
    addFlag("gain-ramps", overrides.gainRamps, "Gains run in a line instead of stepping between blocks");
    addFlag(
        "open-microphone-limit", overrides.openMicrophoneLimit, "All microphones together are as open as one"
    );
    addFlag("fast-onset", overrides.fastOnset, "A voice is open within its first 5 ms");
}

} // namespace orvane::cli
