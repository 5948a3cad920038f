#pragma once

#include "platform/base/result.h"

#include <cstdint>
#include <filesystem>

namespace orvane::platform {

/// A kind of sound file that is written. All hold 32-bit float samples but FLAC, which holds 24-bit integers.
enum class SoundFileFormat : std::uint8_t { wav, w64, rf64, flac, aiff };

/// The format that the ending of a file's name asks for, in upper or lower case; a device such as /dev/null
/// is a WAV. Fails, listing the endings, if no format has this one. Control threads.
Result<SoundFileFormat> soundFileFormat(const std::filesystem::path& path);

/// The same for a recording, which must be readable whenever the program is ended: a WAV, W64 or RF64.
Result<SoundFileFormat> recordingFormat(const std::filesystem::path& path);

} // namespace orvane::platform
