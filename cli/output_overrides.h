#pragma once

#include "dsp/output_options.h"

#include <optional>

namespace CLI {
class App;
}

namespace orvane::cli {

/// Output options from the command line, which override the session's. Absent members leave it as it is.
struct OutputOverrides {
    std::optional<dsp::LevelerMode> leveler = {};
    std::optional<bool> gainRamps = {};
    std::optional<bool> openMicrophoneLimit = {};
    std::optional<bool> fastOnset = {};
    /// The ceiling, or absent within: no limiter.
    std::optional<std::optional<double>> limiterCeilingDBTP = {};

    [[nodiscard]] dsp::OutputOptions appliedTo(dsp::OutputOptions options) const;
};

/// Adds the options to a command. `overrides` must live until the command line has been parsed.
void addOutputOptions(CLI::App& command, OutputOverrides& overrides);

} // namespace orvane::cli
