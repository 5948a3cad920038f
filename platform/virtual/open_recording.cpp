#include "platform/virtual/open_recording.h"

#include "platform/files/file_error.h"

#include <fmt/format.h>

namespace orvane::platform::virtual_devices {

Result<SoundFileReader> openRecording(const std::filesystem::path& path, std::size_t channelCount) {
    auto reader = SoundFileReader::open(path);
    if (reader && reader.value().channelCount() != channelCount)
        return fileError(
            path, "cannot be played as this device's inputs",
            fmt::format("it has {} channels, not {}", reader.value().channelCount(), channelCount)
        );
    return reader;
}

} // namespace orvane::platform::virtual_devices
