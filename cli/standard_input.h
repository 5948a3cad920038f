#pragma once

#include "platform/base/result.h"
#include "platform/files/sound_file_reader.h"

#include <filesystem>
#include <functional>

namespace orvane::cli {

/// The name of standard input or output instead of a file.
inline constexpr const char* standardStream = "-";

/// Opens the sound file at `path`; "-" is standard input. Standard input that is not a file is first read to
/// its end into a temporary file. Fails if `isCancelled` becomes true. Main thread.
platform::Result<platform::SoundFileReader>
openSound(const std::filesystem::path& path, const std::function<bool()>& isCancelled);

} // namespace orvane::cli
