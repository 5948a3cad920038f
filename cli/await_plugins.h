#pragma once

#include "engine/mixer_engine.h"
#include "platform/run_loop.h"

#include <functional>

namespace orvane::cli {

/// Runs the engine's main thread until every insert plugin that it is loading is live or has failed, or until
/// `isCancelled`. Shows how far it is on a terminal. Main thread.
void awaitPlugins(
    const engine::MixerEngine& engine, platform::RunLoop& loop, const std::function<bool()>& isCancelled
);

} // namespace orvane::cli
