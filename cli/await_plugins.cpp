#include "cli/await_plugins.h"

#include "cli/progress_bar.h"

#include <algorithm>
#include <chrono>
#include <variant>

namespace orvane::cli {

using namespace std::chrono_literals;

void awaitPlugins(
    const engine::MixerEngine& engine, platform::RunLoop& loop, const std::function<bool()>& isCancelled
) {
    const auto loading = [&engine] {
        return std::ranges::count_if(engine.state().pluginLoadStates.get(), [](const auto& slot) {
            return std::holds_alternative<plugins::load_state::Loading>(slot.second);
        });
    };
    const auto all = loading();
    ProgressBar bar;
    // Also lets a cancellation be seen while a plugin takes its time.
    const auto timer = loop.repeat(50ms, [&] {
        bar.update(1.0 - static_cast<double>(loading()) / static_cast<double>(all));
    });
    loop.runWhile([&] { return loading() > 0 && !isCancelled(); });
}

} // namespace orvane::cli
