#pragma once

#include "engine/session/document_limits.h"
#include "engine/session/mixer_document_data.h"
#include "platform/base/result.h"

#include <string_view>

namespace orvane::session {

/// Decodes the content of a session file, completely or not at all. Missing keys of older files take their
/// defaults, and unknown keys are ignored. Any content, hostile or not, results in a session or an error with
/// its position: a key path (`channels[3].trim`), or line and column. Any thread except audio threads.
platform::Result<MixerDocumentData>
decodeMixerDocument(std::string_view text, const DocumentLimits& limits = {});

} // namespace orvane::session
