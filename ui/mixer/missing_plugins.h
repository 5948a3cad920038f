#pragma once

#include "engine/mixer_engine.h"

#include <QStringList>

namespace orvane::ui {

/// The plugins that the strips name and that are neither loaded nor loading nor failed, as after a load of a
/// session whose plugins are not installed: a line each, with the strip and the insert; a few at most, and
/// how many more there are. Main thread.
QStringList missingPlugins(const engine::MixerEngine& engine);

} // namespace orvane::ui
