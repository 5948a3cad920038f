#pragma once

#include "engine/session/document_limits.h"
#include "engine/session/mixer_document_data.h"
#include "platform/base/result.h"

#include <string_view>

namespace orvane::session {

/// The session that a file's content describes, all or nothing. Keys that older files lack take their
/// defaults, keys without a meaning are ignored. Any content, hostile or not, gives a session or an error
/// that says what is wrong and where, by key path (`channels[3].trim`) or by line and column. Any thread but
/// the audio ones.
platform::Result<MixerDocumentData>
decodeMixerDocument(std::string_view text, const DocumentLimits& limits = {});

} // namespace orvane::session
