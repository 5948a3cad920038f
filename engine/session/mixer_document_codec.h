#pragma once

#include "engine/session/document_limits.h"
#include "engine/session/mixer_document_data.h"
#include "platform/base/result.h"

#include <string>
#include <string_view>

namespace orvane::session {

/// Encodes a session as the content of a file: indented JSON with the keys of every object in ascending order
/// and without absent settings. Bytes of a name that are not UTF-8 become the replacement character. Fails,
/// with the path, if a number is not finite, and if the content exceeds the limits; the result can always be
/// decoded. Any thread except audio threads.
platform::Result<std::string>
encodeMixerDocument(const MixerDocumentData& data, const DocumentLimits& limits = {});

/// Decodes the content of a session file, completely or not at all. Missing keys of older files take their
/// defaults, and unknown keys are ignored. Any content, hostile or not, results in a session or an error with
/// its position: a key path (`channels[3].trim`), or line and column. Any thread except audio threads.
platform::Result<MixerDocumentData>
decodeMixerDocument(std::string_view text, const DocumentLimits& limits = {});

} // namespace orvane::session
