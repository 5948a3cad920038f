#pragma once

#include "cli/action.h"

#include <CLI/App.hpp>

namespace orvane::cli {

/// Adds the subcommand "devices"; what it does goes to `action` when the arguments ask for it.
void addDevicesCommand(CLI::App& program, Action& action);

} // namespace orvane::cli
