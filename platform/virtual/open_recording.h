#pragma once

#include "platform/base/result.h"
#include "platform/files/sound_file_reader.h"

#include <cstddef>
#include <filesystem>

namespace orvane::platform::virtual_devices {

/// Opens a sound file; fails if it cannot be read or does not have `channelCount` channels. Control threads.
Result<SoundFileReader> openRecording(const std::filesystem::path& path, std::size_t channelCount);

} // namespace orvane::platform::virtual_devices
