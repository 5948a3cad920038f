#pragma once

#include "engine/mixer_engine.h"

#include <QStringList>

namespace orvane::ui {

/// Returns one line, with strip and insert, for each plugin that a strip names but that is neither loaded,
/// loading nor failed, as after loading a session whose plugins are not installed. After a few lines, a last
/// line gives the number of the others. Main thread.
QStringList missingPlugins(const engine::MixerEngine& engine);

} // namespace orvane::ui
