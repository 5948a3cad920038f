#pragma once

#include "engine/session/mixer_document_data.h"
#include "platform/base/result.h"

#include <filesystem>

namespace orvane::session {

/// A session file, for open and save panels. Any thread except audio threads, one at a time.
struct MixerJSONDocument {
    MixerDocumentData data;

    bool operator==(const MixerJSONDocument&) const = default;

    /// Fails, naming the file, if it is not a readable regular file, or as `decodeMixerDocument` does.
    static platform::Result<MixerJSONDocument> read(const std::filesystem::path& path);

    /// Creates or replaces the file as a whole. Fails, naming the file, or as `encodeMixerDocument` does; an
    /// existing file then stays as it was.
    [[nodiscard]] platform::Result<platform::Done> write(const std::filesystem::path& path) const;
};

} // namespace orvane::session
