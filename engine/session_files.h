#pragma once

#include "engine/session/mixer_document_data.h"
#include "platform/base/result.h"
#include "platform/files/file_stamp.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace orvane::engine {

// Sessions from and to files. The errors are the whole sentence for the user.

/// The errors if memory runs out.
inline constexpr const char* noMemoryToRead =
    "Couldn't read that settings file: there is not enough memory for it.";
inline constexpr const char* noMemoryToWrite =
    "Export failed: there is not enough memory to write the session.";

/// Reads the session that a user has chosen; `MixerEngine::applyDocument` loads it. Any thread but the audio
/// ones.
platform::Result<session::MixerDocumentData> readSession(const std::filesystem::path& path);

/// The channels of a session that a mixer of so many strips has no place for. A file that is saved over keeps
/// them. Any thread but the audio ones.
std::vector<session::ChannelSettingsData>
channelsBeyond(const session::MixerDocumentData& document, std::size_t strips);

/// Why a session's file is not to be replaced without asking, as the beginning of a sentence: its permissions
/// forbid to write it, or it has changed since it was as `known` says. Absent if nothing speaks against it.
/// Any thread but the audio ones.
std::optional<std::string>
objectionToReplacing(const std::filesystem::path& path, const std::optional<platform::FileStamp>& known);

/// Writes a session, with further channels after its own. Where it fails, a file that was there stays as it
/// was. Any thread but the audio ones.
platform::Result<platform::Done> exportSession(
    const session::MixerDocumentData& document, const std::filesystem::path& path,
    std::span<const session::ChannelSettingsData> furtherChannels = {}
);

} // namespace orvane::engine
