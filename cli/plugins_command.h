#pragma once

namespace CLI {
class App;
}

namespace orvane::cli {

/// Adds the subcommand "plugins"; its exit code goes to `exitCode`.
void addPluginsCommand(CLI::App& program, int& exitCode);

} // namespace orvane::cli
