#pragma once

#include "engine/session/mixer_document_data.h"
#include "platform/result.h"

#include <filesystem>

namespace orvane::engine {

// Sessions from and to files. The errors are the whole sentence for the user.

/// Reads the session that a user has chosen; `MixerEngine::applyDocument` loads it. Any thread but the audio
/// ones.
platform::Result<session::MixerDocumentData> readSession(const std::filesystem::path& path);

/// Writes a session. Where it fails, a file that was there stays as it was. Any thread but the audio ones.
platform::Result<platform::Done>
exportSession(const session::MixerDocumentData& document, const std::filesystem::path& path);

} // namespace orvane::engine
