#pragma once

#include <string_view>

namespace orvane::cli {

/// Writes what a command was asked for to standard output, whole. Returns the exit code: 0, or 1 where it
/// could not be written, having said why. Main thread.
int printResult(std::string_view text);

} // namespace orvane::cli
