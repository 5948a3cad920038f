#pragma once

#include "platform/base/result.h"
#include "platform/files/sound_file_reader.h"

#include <filesystem>
#include <functional>

namespace orvane::cli {

/// The name that stands for standard input or output instead of a file.
inline constexpr const char* standardStream = "-";

/// Opens the sound file at `path`; "-" is what comes on standard input, which is first read to its end into a
/// temporary file unless it is a file. Fails also once `isCancelled`. Main thread.
platform::Result<platform::SoundFileReader>
openSound(const std::filesystem::path& path, const std::function<bool()>& isCancelled);

} // namespace orvane::cli
