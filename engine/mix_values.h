#pragma once

#include "audio/insert_table.h"
#include "dsp/channel_automix_settings.h"
#include "engine/session/channel_strip.h"
#include "engine/session/master_settings.h"
#include "plugins/loaded_insert_plugin.h"
#include "plugins/plugin_slot_key.h"

#include <memory>
#include <unordered_map>
#include <vector>

namespace orvane::engine {

/// The plugins that are live, by slot.
using LivePlugins = std::unordered_map<plugins::PluginSlotKey, std::shared_ptr<plugins::LoadedInsertPlugin>>;

/// All that a run plays. A plain value, whose copies share the plugins.
struct MixValues {
    std::vector<session::ChannelStrip> channelStrips;
    session::MasterSettings master;
    LivePlugins plugins;
};

/// The automix settings of the strips and, last, of the reference noise.
std::vector<dsp::ChannelAutomixSettings> automixSettings(const std::vector<session::ChannelStrip>& strips);

/// The render context and the bypass flag of every slot.
audio::InsertTable insertTable(const std::vector<session::ChannelStrip>& strips, const LivePlugins& plugins);

} // namespace orvane::engine
