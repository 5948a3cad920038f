#pragma once

#include <string_view>

namespace orvane::platform {

/// Writes to standard error what can be written there. What fails, or finds nobody who reads it for a tenth
/// of a second, is left out: there is nobody else to tell, and nothing else waits for it. Control threads.
void writeToStandardError(std::string_view text) noexcept;

} // namespace orvane::platform
