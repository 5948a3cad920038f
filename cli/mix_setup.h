#pragma once

#include "engine/mixer_engine.h"
#include "engine/session/mixer_document_data.h"
#include "platform/base/result.h"

#include <optional>

namespace orvane::cli {

/// Sets up a stopped engine, whose devices are selected, for a command: as `document` says, or else so that
/// every strip hears the input of its own number and goes to the master bus alone, which goes to the first
/// two outputs of its device. Strips that the document does not have are patched to nothing. Returns what
/// kept it from that, if anything did: the whole sentence for the user.
std::optional<platform::Error>
setUpMix(engine::MixerEngine& engine, const std::optional<session::MixerDocumentData>& document);

} // namespace orvane::cli
