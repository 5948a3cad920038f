#pragma once

#include <string_view>

namespace orvane::cli {

/// Writes a sentence to standard error as one line "orvane-cli: ...", as far as that can be written. Main
/// thread.
void printMessage(std::string_view sentence);

} // namespace orvane::cli
