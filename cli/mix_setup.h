#pragma once

#include "cli/output_overrides.h"
#include "engine/mixer_engine.h"
#include "engine/session/mixer_document_data.h"
#include "platform/base/result.h"

#include <optional>

namespace orvane::cli {

/// Sets up a stopped engine whose devices are selected: as `document` specifies, or else with every strip
/// patched to the input of its own number and sent only to the master bus, which goes to the first two
/// outputs of its device. Strips that the document lacks are not patched. The overrides come last. Returns an
/// error, a whole sentence for the user, if the document cannot be loaded.
std::optional<platform::Error> setUpMix(
    engine::MixerEngine& engine, const std::optional<session::MixerDocumentData>& document,
    const OutputOverrides& overrides = {}
);

} // namespace orvane::cli
