#pragma once

#include <string_view>

namespace orvane::machine {

/// Writes a sentence to standard error as one line "PROGRAM: ...", as far as that can be written. Main
/// thread.
void printMessage(std::string_view program, std::string_view sentence);

} // namespace orvane::machine
