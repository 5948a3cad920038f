#pragma once

#include <CLI/App.hpp>

namespace orvane::cli {

/// Adds the subcommand `render` to the program. `exitCode` outlives the parsing and is set when it has run.
void addRenderCommand(CLI::App& program, int& exitCode);

} // namespace orvane::cli
