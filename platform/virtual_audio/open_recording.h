#pragma once

#include "platform/result.h"
#include "platform/sound_file_reader.h"

#include <cstddef>
#include <filesystem>

namespace orvane::platform {

/// Opens a sound file that is to have `channelCount` channels; fails where it is none or has another number.
/// Control threads.
Result<SoundFileReader> openRecording(const std::filesystem::path& path, std::size_t channelCount);

} // namespace orvane::platform
