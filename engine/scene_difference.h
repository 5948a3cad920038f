#pragma once

#include "engine/session/channel_strip.h"
#include "engine/session/master_settings.h"
#include "engine/session/snapshot.h"

#include <span>

namespace orvane::engine {

/// Whether a recall of the scene would change these strips or levels. Compares which plugins there are, not
/// their settings: a recall leaves a plugin that stays as it is. Any thread.
bool differs(
    const session::Snapshot& scene, std::span<const session::ChannelStrip> strips,
    const session::MasterLevels& levels
);

} // namespace orvane::engine
