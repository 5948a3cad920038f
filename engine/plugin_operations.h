#pragma once

#include "audio/insert_table.h"
#include "audio/mixer_realtime_state.h"
#include "audio/published.h"
#include "engine/engine_state.h"
#include "engine/services.h"
#include "engine/session/channel_settings_data.h"
#include "platform/base/uuid.h"
#include "platform/effects/audio_unit_host.h"
#include "platform/files/property_list.h"
#include "plugins/insert_rack.h"
#include "plugins/insert_rack_owner.h"
#include "plugins/plugin_preset_store.h"
#include "plugins/plugin_slot_key.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace orvane::engine {

/// What the engine does with insert plugins: their rack, the clipboard and the presets, on the engine's
/// published state. Operations with a slot that does not exist, or without the live plugin that they need, do
/// nothing. Owned by the engine. Main thread.
class PluginOperations final : private plugins::InsertRackOwner {
  public:
    using PluginSlotKey = plugins::PluginSlotKey;

    /// The engine that the operations are part of.
    struct Engine {
        EngineState& state;
        /// Changes a strip and publishes the strips, then pushes routing and inserts.
        std::function<
            void(const platform::Uuid& strip, const std::function<void(session::ChannelStrip&)>& edit)>
            editStrip;
        /// The run's; null while stopped.
        std::function<audio::MixerRealtimeState*()> realtimeState;
    };

    PluginOperations(Engine partOf, const Services& services);

    [[nodiscard]] plugins::InsertRack& rack() { return insertRack; }
    [[nodiscard]] const plugins::InsertRack& rack() const { return insertRack; }
    [[nodiscard]] const plugins::PluginPresetStore& presetStore() const { return pluginPresetStore; }

    /// The live plugins and bypass flags of every strip, for a run to begin with.
    [[nodiscard]] audio::InsertTable insertTable() const;
    void pushInserts() override;

    // The clipboard.

    void copyPlugin(const PluginSlotKey& key);
    void toggleCopyArm();
    void togglePasteArm();
    void cancelClipboardArm();
    /// Copies from or pastes to a slot where that is armed; false where the click means something else.
    bool handleClipboardClick(const PluginSlotKey& key);

    // Presets.

    void savePluginPreset(const std::string& name, const PluginSlotKey& key);
    void savePluginPresetOnAllChannels(const std::string& name, std::size_t slot);
    void applyPluginPreset(const plugins::NamedPreset& preset, const PluginSlotKey& key);
    void deletePluginPreset(const platform::Uuid& id, const session::AUComponentIdentity& identity);

  private:
    /// Of the settings that a plugin has now; nothing where it has none to save, which the error says.
    std::optional<plugins::NewPreset> presetOf(const std::string& name, const PluginSlotKey& key);

    [[nodiscard]] const std::vector<session::ChannelStrip>& channelStrips() const override;
    void replaceSlot(const PluginSlotKey& key, session::PluginSlot record) override;
    [[nodiscard]] const plugins::PluginLoadStates& pluginLoadStates() const override;
    void setPluginLoadStates(plugins::PluginLoadStates states) override;
    void setLastError(std::string sentence) override;
    [[nodiscard]] double sampleRate() const override;
    [[nodiscard]] std::int64_t bufferSize() const override;
    bool freeRetired() override;

    Engine engine;
    plugins::InsertRack insertRack;
    plugins::PluginPresetStore pluginPresetStore;
    audio::Subscription sampleRateHeard;
};

} // namespace orvane::engine
