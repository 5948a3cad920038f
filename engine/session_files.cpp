#include "engine/session_files.h"

#include "engine/session/mixer_json_document.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <ranges>
#include <utility>

namespace orvane::engine {

platform::Result<session::MixerDocumentData> readSession(const std::filesystem::path& path) try {
    auto read = session::MixerJSONDocument::read(path);
    if (!read) return platform::Error{"Couldn't read that settings file: " + read.error().description};
    return std::move(read).value().data;
} catch (const std::bad_alloc&) {
    return platform::Error{noMemoryToRead};
}

std::vector<session::ChannelSettingsData>
channelsBeyond(const session::MixerDocumentData& document, std::size_t strips) {
    const auto beyond = document.channels | std::views::drop(strips);
    return {beyond.begin(), beyond.end()};
}

std::optional<std::string>
objectionToReplacing(const std::filesystem::path& path, const std::optional<platform::FileStamp>& known) {
    const std::string name = '"' + path.string() + '"';
    if (platform::isWriteProtected(path)) return name + " is write-protected";
    const auto now = platform::stampOf(path);
    if (known && now && *now != *known) return name + " was changed by another program since it was read";
    return std::nullopt;
}

platform::Result<platform::Done> exportSession(
    const session::MixerDocumentData& document, const std::filesystem::path& path,
    std::span<const session::ChannelSettingsData> furtherChannels
) try {
    session::MixerJSONDocument file{document};
    std::ranges::copy(furtherChannels, std::back_inserter(file.data.channels));
    auto written = file.write(path);
    if (!written) return platform::Error{"Export failed: " + written.error().description};
    return written;
} catch (const std::bad_alloc&) {
    return platform::Error{noMemoryToWrite};
}

} // namespace orvane::engine
