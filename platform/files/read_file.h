#pragma once

#include "platform/base/result.h"

#include <cstddef>
#include <filesystem>
#include <string>

namespace orvane::platform {

/// The whole content of a regular file. Fails for anything else, without waiting for a pipe or device to have
/// something to say, and for more than `maximumSize` bytes. Any thread but the audio ones.
Result<std::string> readFile(const std::filesystem::path& path, std::size_t maximumSize);

} // namespace orvane::platform
