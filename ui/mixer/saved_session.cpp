#include "ui/mixer/saved_session.h"

#include "platform/base/memory_shortage.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <variant>

namespace orvane::ui {

namespace load_state = plugins::load_state;

SavedSession::SavedSession(const engine::MixerEngine& mixerEngine)
    : engine(mixerEngine),
      document(mixerEngine.makeDocumentData()),
      loads(mixerEngine.state().pluginLoadStates.subscribe([this](const auto&) {
          // If memory runs out, the session counts as changed.
          platform::runUnlessOutOfMemory([this] { takeDefaults(); });
      })) {}

void SavedSession::set(session::MixerDocumentData session) {
    std::vector<plugins::PluginSlotKey> loading;
    for (const auto& [key, state] : engine.state().pluginLoadStates.get())
        if (std::holds_alternative<load_state::Loading>(state)) loading.push_back(key);
    awaited = std::move(loading);
    document = std::move(session);
}

bool SavedSession::isOutdated() const {
    return engine.makeDocumentData() != document;
}

void SavedSession::takeDefaults() {
    const auto& states = engine.state().pluginLoadStates.get();
    std::erase_if(awaited, [this, &states](const plugins::PluginSlotKey& key) {
        const auto state = states.find(key);
        if (state == states.end()) return true;
        if (std::holds_alternative<load_state::Loaded>(state->second)) takeDefaults(key);
        return !std::holds_alternative<load_state::Loading>(state->second);
    });
}

void SavedSession::takeDefaults(const plugins::PluginSlotKey& key) {
    const auto& strips = engine.state().channelStrips.get();
    const auto strip = std::ranges::find(strips, key.stripID, &session::ChannelStrip::id);
    const auto index = static_cast<std::size_t>(strip - strips.begin());
    if (index >= std::min(strips.size(), document.channels.size())) return;
    std::vector<session::PluginSlot>& slots = document.channels[index].pluginSlots;
    if (key.slot >= slots.size() || slots[key.slot].presetData) return;
    const session::PluginSlot& record = strip->pluginSlots[key.slot];
    // If they differ, the user has since chosen another plugin, or one with settings.
    if (record.component == slots[key.slot].component && !record.presetData)
        slots[key.slot].presetData = engine.pluginSettings(key.slot, key.stripID);
}

} // namespace orvane::ui
