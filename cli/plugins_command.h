#pragma once

#include "cli/action.h"

namespace CLI {
class App;
}

namespace orvane::cli {

/// Adds the subcommand "plugins"; what it does goes to `action` when the arguments ask for it.
void addPluginsCommand(CLI::App& program, Action& action);

} // namespace orvane::cli
