#pragma once

#include "engine/session/document_limits.h"
#include "engine/session/mixer_document_data.h"
#include "platform/base/result.h"

#include <string>

namespace orvane::session {

/// A session as the content of a file: indented JSON with the keys of every object in ascending order, absent
/// settings left out; a byte of a name that is not UTF-8 becomes the replacement character. Fails for a
/// number that is not finite, telling which, and for more than a file may hold; what it gives always decodes.
/// Any thread but the audio ones.
platform::Result<std::string>
encodeMixerDocument(const MixerDocumentData& data, const DocumentLimits& limits = {});

} // namespace orvane::session
