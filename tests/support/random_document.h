#pragma once

#include "engine/session/mixer_document_data.h"

#include <cstdint>

namespace orvane::test {

/// A session with random values in every field, from the whole range that a file can hold; equal seeds give
/// equal sessions, except for the ids.
session::MixerDocumentData randomDocument(std::uint64_t seed);

} // namespace orvane::test
