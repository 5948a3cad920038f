#pragma once

#include "cli/action.h"

#include <variant>

namespace orvane::cli {

/// Reads the arguments and gives what they ask for, not done yet, or the exit code with which the program is
/// to end: having printed its help or version, or what is wrong with them. Main thread.
std::variant<Action, int> readCommandLine(int argc, const char* const* argv);

} // namespace orvane::cli
