#include "engine/retired_plugins.h"

#include "platform/base/abandoned.h"

#include <chrono>
#include <iterator>
#include <utility>

namespace orvane::engine {

namespace {

using namespace std::chrono_literals;

/// About as long as a block.
constexpr auto retryInterval = 10ms;

} // namespace

RetiredPlugins::RetiredPlugins(platform::MainThread& thread, std::function<bool()> noneInUse)
    : mainThread(thread), nothingIsInUse(std::move(noneInUse)) {}

void RetiredPlugins::add(const std::shared_ptr<plugins::LoadedInsertPlugin>& plugin) {
    inTables.push_back(plugin);
}

void RetiredPlugins::wereWithdrawn() {
    withdrawn.insert(
        withdrawn.end(), std::make_move_iterator(inTables.begin()), std::make_move_iterator(inTables.end())
    );
    inTables.clear();
}

void RetiredPlugins::release() {
    if (withdrawn.empty()) return;
    if (!nothingIsInUse()) {
        if (!retry) retry = mainThread.repeat(retryInterval, [this] { release(); });
        return;
    }
    retry.reset();
    for (const auto& plugin : withdrawn)
        if (plugin->renderContext && plugin->renderContext->isStuck()) platform::abandon(plugin);
    withdrawn.clear();
}

} // namespace orvane::engine
