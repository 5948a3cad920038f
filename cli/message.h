#pragma once

#include <string_view>

namespace orvane::cli {

/// Writes a sentence to standard error as one line "orvane-cli: ...". Main thread.
void printMessage(std::string_view sentence);

} // namespace orvane::cli
