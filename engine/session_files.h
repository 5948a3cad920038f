#pragma once

#include "engine/mixer_engine.h"
#include "engine/session/mixer_document_data.h"
#include "platform/result.h"

#include <filesystem>

namespace orvane::engine {

// Sessions from and to files. The errors are the whole sentence for the user.

/// Reads the session that a user has chosen; `MixerEngine::applyDocument` loads it. Any thread but the audio
/// ones.
platform::Result<session::MixerDocumentData> readSession(const std::filesystem::path& path);

/// Writes the engine's session. Where it fails, a file that was there stays as it was. Main thread.
platform::Result<platform::Done> exportSession(const MixerEngine& engine, const std::filesystem::path& path);

} // namespace orvane::engine
