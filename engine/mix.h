#pragma once

#include "engine/engine_state.h"
#include "engine/mix_values.h"
#include "engine/retired_plugins.h"
#include "engine/running_audio.h"
#include "engine/session/channel_strip.h"
#include "engine/session/master_settings.h"
#include "platform/base/main_thread.h"
#include "platform/base/uuid.h"
#include "plugins/loaded_insert_plugin.h"
#include "plugins/plugin_slot_key.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

namespace orvane::engine {

/// What is mixed: the strips, the master section and the live plugins, and the run that plays them. Nothing
/// else changes or publishes these. Every change reaches the run, if there is one: a strip is shown first and
/// then played, also if a subscriber throws; the master section is played first. Owned by the engine. Main
/// thread.
class Mix final {
  public:
    using Strips = std::vector<session::ChannelStrip>;

    /// `channelCount` default strips, stopped. Both arguments outlive the mix.
    Mix(std::size_t channelCount, EngineState& engineState, platform::MainThread& thread);
    /// Ends the run.
    ~Mix();
    Mix(const Mix&) = delete;
    Mix& operator=(const Mix&) = delete;

    [[nodiscard]] const Strips& strips() const { return state.channelStrips.get(); }
    [[nodiscard]] const session::MasterSettings& master() const { return state.master.get(); }

    /// Does nothing without a strip of that id.
    void editStrip(const platform::Uuid& strip, const std::function<void(session::ChannelStrip&)>& edit);
    void editStrips(const std::function<void(Strips&)>& edit);
    void editMaster(const std::function<void(session::MasterSettings&)>& edit);
    void setMaster(const session::MasterSettings& settings);

    /// The plugin that is live in a slot, or null.
    [[nodiscard]] std::shared_ptr<plugins::LoadedInsertPlugin> plugin(const plugins::PluginSlotKey& key
    ) const;
    [[nodiscard]] const LivePlugins& plugins() const { return livePlugins; }
    /// Replaces or, with null, removes the plugin of a slot; from the next `pushInserts` on it is played or
    /// not.
    void
    setPlugin(const plugins::PluginSlotKey& key, const std::shared_ptr<plugins::LoadedInsertPlugin>& plugin);
    /// Hands the live plugins and bypass flags to the run, and frees the plugins that it no longer uses.
    void pushInserts();

    /// All of it at this moment, and back to it.
    [[nodiscard]] MixValues values() const;
    void take(MixValues values);

    /// Null while stopped.
    [[nodiscard]] const std::shared_ptr<RunningAudio>& run() const { return running; }
    /// Ends the run there is, if any, for another one or none, and publishes whether one is on.
    void setRun(std::shared_ptr<RunningAudio> next);

  private:
    void setStrips(Strips next);
    void pushStrips();

    EngineState& state;
    LivePlugins livePlugins;
    RetiredPlugins retired;
    std::shared_ptr<RunningAudio> running;
};

} // namespace orvane::engine
