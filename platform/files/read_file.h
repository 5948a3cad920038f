#pragma once

#include "platform/base/result.h"

#include <cstddef>
#include <filesystem>
#include <string>

namespace orvane::platform {

/// Returns the content of a regular file. Fails for anything else, without waiting for a pipe or device, and
/// for more than `maximumSize` bytes. Any thread except audio threads.
Result<std::string> readFile(const std::filesystem::path& path, std::size_t maximumSize);

} // namespace orvane::platform
