#include "cli/await_plugins.h"

#include "cli/printing.h"
#include "cli/progress_bar.h"

#include <fmt/format.h>

#include <chrono>
#include <cstddef>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace orvane::cli {

using namespace std::chrono_literals;

namespace {

/// Without progress for this long, the next plugin is reported as slow.
constexpr auto longTime = 5s;
/// Without progress for this long, the next plugin counts as stuck.
constexpr auto veryLongTime = 15s;

/// Returns "Name (insert 2 of Alto)" for each slot that is still loading.
std::vector<std::string> loadingPlugins(const engine::EngineState& state) {
    std::vector<std::string> loading;
    const plugins::PluginLoadStates& states = state.pluginLoadStates.get();
    for (const session::ChannelStrip& strip : state.channelStrips.get())
        for (std::size_t slot = 0; slot < strip.pluginSlots.size(); ++slot) {
            const auto found = states.find({strip.id, slot});
            if (found != states.end() && std::holds_alternative<plugins::load_state::Loading>(found->second))
                loading.push_back(fmt::format(
                    "{} (insert {} of {})", strip.pluginSlots[slot].pluginName.value_or("a plugin"), slot + 1,
                    strip.name
                ));
        }
    return loading;
}

std::string waitingFor(const std::vector<std::string>& plugins) {
    std::string sentence = "Still waiting for " + plugins.front() + " to load";
    if (plugins.size() > 1) sentence += fmt::format(", and for {} more", plugins.size() - 1);
    return sentence + ".";
}

} // namespace

void awaitPlugins(
    const engine::MixerEngine& engine, platform::RunLoop& loop, IfStuck ifStuck,
    const std::function<bool()>& isCancelled
) {
    std::vector<std::string> loading = loadingPlugins(engine.state());
    const auto all = static_cast<double>(loading.size());
    auto lastProgress = std::chrono::steady_clock::now();
    bool isReported = false;
    bool isStuck = false;
    ProgressBar bar;
    // Also lets a cancellation take effect while a plugin loads.
    const auto timer = loop.repeat(50ms, [&] {
        const auto now = std::chrono::steady_clock::now();
        std::vector<std::string> left = loadingPlugins(engine.state());
        bar.update(1.0 - static_cast<double>(left.size()) / all);
        if (left.size() != loading.size()) {
            loading = std::move(left);
            lastProgress = now;
        }
        if (!std::exchange(isReported, isReported || now - lastProgress > longTime) && isReported)
            printMessage(waitingFor(loading));
        isStuck = now - lastProgress > veryLongTime;
    });
    loop.runWhile([&] {
        if (isStuck && ifStuck == IfStuck::goOn) return false;
        return !loadingPlugins(engine.state()).empty() && !isCancelled();
    });
}

} // namespace orvane::cli
