#pragma once

#include "engine/mixer_engine.h"

#include <QWidget>

#include <functional>
#include <memory>

namespace orvane::app {

/// Stands where the mixer's view will be: starts and stops, and opens the sheets.
std::unique_ptr<QWidget>
makePlaceholderMixerView(engine::MixerEngine& mixer, std::function<void()> onReconfigure);

} // namespace orvane::app
