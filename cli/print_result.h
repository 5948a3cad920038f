#pragma once

#include <string_view>

namespace orvane::cli {

/// Writes what a command was asked for to standard output, whole; a terminal is sent its `terminalText`.
/// Returns the exit code: 0, also if the reader closed its end because it has read enough, or 1 if it could
/// not be written, after saying why. Main thread.
int printResult(std::string_view text);

} // namespace orvane::cli
