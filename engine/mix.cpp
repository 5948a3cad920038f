#include "engine/mix.h"

#include "platform/base/abandoned.h"

#include <algorithm>
#include <utility>

namespace orvane::engine {

using plugins::LoadedInsertPlugin;
using plugins::PluginSlotKey;
using session::ChannelStrip;
using session::MasterSettings;

Mix::Mix(std::size_t channelCount, EngineState& engineState, platform::MainThread& thread)
    : state(engineState),
      retired(thread, [this] { return !running || running->realtimeState()->freeRetired(); }) {
    state.channelStrips.set(session::makeDefaultStrips(channelCount));
}

Mix::~Mix() {
    running.reset();
    for (const auto& [key, plugin] : livePlugins)
        if (plugin->renderContext->isStuck()) platform::abandon(plugin);
    retired.release();
}

void Mix::editStrip(const platform::Uuid& strip, const std::function<void(ChannelStrip&)>& edit) {
    Strips edited = strips();
    const auto found = std::ranges::find(edited, strip, &ChannelStrip::id);
    if (found == edited.end()) return;
    edit(*found);
    setStrips(std::move(edited));
}

void Mix::editStrips(const std::function<void(Strips&)>& edit) {
    Strips edited = strips();
    edit(edited);
    setStrips(std::move(edited));
}

void Mix::setStrips(Strips next) {
    try {
        state.channelStrips.set(std::move(next));
    } catch (...) {
        // What is shown is heard, also if a subscriber fails.
        pushStrips();
        throw;
    }
    pushStrips();
}

void Mix::editMaster(const std::function<void(MasterSettings&)>& edit) {
    MasterSettings edited = master();
    edit(edited);
    setMaster(edited);
}

void Mix::setMaster(const MasterSettings& settings) {
    if (running) running->setMaster(settings);
    if (running && settings.masterOutputRouting != master().masterOutputRouting)
        running->setRouting(strips(), settings.masterOutputRouting);
    state.master.set(settings);
}

std::shared_ptr<LoadedInsertPlugin> Mix::plugin(const PluginSlotKey& key) const {
    const auto found = livePlugins.find(key);
    return found == livePlugins.end() ? nullptr : found->second;
}

void Mix::setPlugin(const PluginSlotKey& key, const std::shared_ptr<LoadedInsertPlugin>& plugin) {
    if (const auto replaced = livePlugins.find(key); replaced != livePlugins.end()) {
        retired.add(replaced->second);
        if (!plugin) livePlugins.erase(replaced);
    }
    if (plugin) livePlugins.insert_or_assign(key, plugin);
}

void Mix::pushInserts() {
    if (running) running->realtimeState()->updatePlugins(insertTable(strips(), livePlugins));
    retired.wereWithdrawn();
    retired.release();
}

MixValues Mix::values() const {
    return {strips(), master(), livePlugins};
}

void Mix::take(MixValues values) {
    livePlugins = std::move(values.plugins);
    setMaster(values.master);
    setStrips(std::move(values.channelStrips));
}

void Mix::setRun(std::shared_ptr<RunningAudio> next) {
    running = std::move(next);
    state.isRunning.set(running != nullptr);
    retired.release();
}

void Mix::pushStrips() {
    if (running) running->setRouting(strips(), master().masterOutputRouting);
    pushInserts();
    if (running) running->automix().setSettings(automixSettings(strips()));
}

} // namespace orvane::engine
