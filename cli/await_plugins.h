#pragma once

#include "engine/mixer_engine.h"
#include "platform/base/run_loop.h"

#include <functional>

namespace orvane::cli {

/// What to do about a plugin that never finishes loading.
enum class IfStuck { wait, goOn };

/// Runs the engine's main thread until every insert plugin that is loading is live or has failed, or until
/// `isCancelled`. Shows its progress on a terminal and names a plugin that takes more than a few seconds.
/// Main thread.
void awaitPlugins(
    const engine::MixerEngine& engine, platform::RunLoop& loop, IfStuck ifStuck,
    const std::function<bool()>& isCancelled
);

} // namespace orvane::cli
