#pragma once

#include "engine/session/mixer_document_data.h"

#include <cstdint>

namespace orvane::test {

/// A session whose every field is drawn at random from all that a file can hold, extremes included; the same
/// for the same seed, but for the ids.
session::MixerDocumentData randomDocument(std::uint64_t seed);

} // namespace orvane::test
