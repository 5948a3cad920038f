#pragma once

#include <CLI/App.hpp>

namespace orvane::cli {

/// Adds the subcommand `midi` to the program. `exitCode` outlives the parsing and is set when it has run.
void addMIDICommand(CLI::App& program, int& exitCode);

} // namespace orvane::cli
