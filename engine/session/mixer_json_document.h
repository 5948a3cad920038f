#pragma once

#include "engine/session/mixer_document_data.h"
#include "platform/base/result.h"

#include <filesystem>

namespace orvane::session {

/// A session file as open and save panels handle it. Any thread but the audio ones, one at a time.
struct MixerJSONDocument {
    MixerDocumentData data;

    bool operator==(const MixerJSONDocument&) const = default;

    /// Fails, naming the file, where it cannot be read or is not a regular file, and as `decodeMixerDocument`
    /// does.
    static platform::Result<MixerJSONDocument> read(const std::filesystem::path& path);

    /// Replaces or makes the file as a whole: where it fails, naming the file or as `encodeMixerDocument`
    /// does, a file that was there stays as it was.
    [[nodiscard]] platform::Result<platform::Done> write(const std::filesystem::path& path) const;
};

} // namespace orvane::session
