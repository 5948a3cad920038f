#pragma once

#include "platform/base/result.h"

#include <cstdint>
#include <filesystem>

namespace orvane::platform {

/// The sound file formats that can be written. FLAC holds 24-bit integers, all others 32-bit float samples.
enum class SoundFileFormat : std::uint8_t { wav, w64, rf64, flac, aiff };

/// The format for a file name's extension, in upper or lower case; WAV for a device such as /dev/null. Fails,
/// listing the extensions, if it is unknown. Control threads.
Result<SoundFileFormat> soundFileFormat(const std::filesystem::path& path);

/// The format for a recording, which must be readable whenever the program ends: WAV, W64 or RF64.
Result<SoundFileFormat> recordingFormat(const std::filesystem::path& path);

} // namespace orvane::platform
