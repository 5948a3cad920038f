#pragma once

#include <string_view>

namespace orvane::platform {

/// Writes to standard error, as far as possible. Text is dropped if writing fails or the reader is stuck for
/// a tenth of a second, because an error could not be reported anywhere. Control threads.
void writeToStandardError(std::string_view text) noexcept;

} // namespace orvane::platform
