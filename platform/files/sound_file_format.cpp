#include "platform/files/sound_file_format.h"

#include "platform/files/file_error.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace orvane::platform {

namespace {

constexpr std::string_view cannotWriteSoundFile = "could not be written";

constexpr std::pair<std::string_view, SoundFileFormat> formatByEnding[] = {
    {".wav", SoundFileFormat::wav},   {".w64", SoundFileFormat::w64},   {".rf64", SoundFileFormat::rf64},
    {".flac", SoundFileFormat::flac}, {".aiff", SoundFileFormat::aiff},
};

std::optional<SoundFileFormat> formatOf(const std::filesystem::path& path) {
    std::error_code ignored;
    if (std::filesystem::is_character_file(path, ignored)) return SoundFileFormat::wav;
    std::string ending = path.extension().string();
    std::ranges::transform(ending, ending.begin(), [](unsigned char letter) {
        return static_cast<char>(std::tolower(letter));
    });
    for (const auto& [known, format] : formatByEnding)
        if (ending == known) return format;
    return std::nullopt;
}

} // namespace

Result<SoundFileFormat> soundFileFormat(const std::filesystem::path& path) {
    if (const auto format = formatOf(path)) return *format;
    return fileError(
        path, cannotWriteSoundFile, "the name of a sound file ends in .wav, .w64, .rf64, .flac or .aiff"
    );
}

Result<SoundFileFormat> recordingFormat(const std::filesystem::path& path) {
    const auto format = formatOf(path);
    if (format && *format != SoundFileFormat::flac && *format != SoundFileFormat::aiff) return *format;
    return fileError(path, cannotWriteSoundFile, "the name of a recording ends in .wav, .w64 or .rf64");
}

} // namespace orvane::platform
