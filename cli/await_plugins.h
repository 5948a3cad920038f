#pragma once

#include "engine/mixer_engine.h"
#include "platform/base/run_loop.h"

#include <functional>

namespace orvane::cli {

/// What is done about a plugin that never gets ready.
enum class IfStuck { wait, goOn };

/// Runs the engine's main thread until every insert plugin that it is loading is live or has failed, or until
/// `isCancelled`. Shows how far it is on a terminal, and names a plugin that takes more than a few seconds.
/// Main thread.
void awaitPlugins(
    const engine::MixerEngine& engine, platform::RunLoop& loop, IfStuck ifStuck,
    const std::function<bool()>& isCancelled
);

} // namespace orvane::cli
