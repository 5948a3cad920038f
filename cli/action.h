#pragma once

#include <functional>

namespace orvane::cli {

/// What a subcommand does with the arguments that were read; gives the program's exit code. Main thread.
using Action = std::function<int()>;

} // namespace orvane::cli
