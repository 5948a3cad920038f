#pragma once

#include <functional>
#include <variant>

namespace CLI {
class App;
}

namespace orvane::cli {

/// The work of a subcommand with the arguments that were read; returns the program's exit code. Main thread.
using Action = std::function<int()>;

/// Reads the arguments. Returns the action that they ask for, or an exit code if the program must end at
/// once: it has printed its help, its version, or an error. Main thread.
std::variant<Action, int> readCommandLine(int argc, const char* const* argv);

// Each of these adds a subcommand, which sets `action` if the arguments ask for it.

void addDevicesCommand(CLI::App& program, Action& action);
void addMIDICommand(CLI::App& program, Action& action);
void addPluginsCommand(CLI::App& program, Action& action);
void addRenderCommand(CLI::App& program, Action& action);
void addRunCommand(CLI::App& program, Action& action);
void addSessionCommand(CLI::App& program, Action& action);

} // namespace orvane::cli
