#pragma once

#include <string_view>

namespace orvane::machine {

/// Writes a sentence to standard error as one line "PROGRAM: ..."; a failure to write is ignored. Main
/// thread.
void printMessage(std::string_view program, std::string_view sentence);

} // namespace orvane::machine
