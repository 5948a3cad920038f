#pragma once

namespace CLI {
class App;
}

namespace orvane::cli {

/// Adds the subcommand "session"; its exit code goes to `exitCode`.
void addSessionCommand(CLI::App& program, int& exitCode);

} // namespace orvane::cli
