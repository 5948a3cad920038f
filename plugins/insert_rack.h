#pragma once

#include "engine/session/channel_settings_data.h"
#include "engine/session/shared_list.h"
#include "platform/base/main_thread.h"
#include "platform/base/system_log.h"
#include "platform/effects/audio_unit_host.h"
#include "platform/effects/editor_windows.h"
#include "plugins/insert_rack_owner.h"
#include "plugins/loaded_insert_plugin.h"
#include "plugins/plugin_slot_key.h"
#include "plugins/retired_plugins.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace orvane::plugins {

/// What the slot records were replaced by.
enum class RecordsFrom { scene, session };

/// The live insert plugins of a mixer: brings them to life from the slot records and keeps them as long as
/// they are in use. Operations with a slot that does not exist do nothing. Owned by the mixer engine, on the
/// main thread; whatever arrives late or from another thread is moved there, or finds the rack gone.
class InsertRack final {
  public:
    /// What the rack works with; all outlive it.
    struct Services {
        platform::AudioUnitHost& audioUnitHost;
        platform::MainThread& mainThread;
        platform::SystemLog& log;
        /// Absent in a program without windows.
        platform::EditorWindows* editorWindows = nullptr;
    };

    InsertRack(InsertRackOwner& rackOwner, const Services& rackServices);
    InsertRack(const InsertRack&) = delete;
    InsertRack& operator=(const InsertRack&) = delete;

    /// A plugin's state, absent for its defaults.
    using PresetData = std::optional<session::SharedList<std::uint8_t>>;

    /// Replaces a slot's plugin; it becomes live once its instance is there.
    void load(
        const platform::AVAudioUnitComponent& component, const PluginSlotKey& key,
        const PresetData& presetData
    );
    /// Empties a slot.
    void remove(const PluginSlotKey& key);
    /// A bypassed plugin stays live; render passes skip it.
    void setBypassed(const PluginSlotKey& key, bool bypassed);
    /// Gives a live plugin a setting that comes with it, once the host has read it, unless the slot has
    /// another plugin by then.
    void applyFactoryPreset(const platform::AUAudioUnitPreset& preset, const PluginSlotKey& key);
    /// Opens one more window for the editor of a live plugin.
    void openEditor(const PluginSlotKey& key);
    /// Makes the live plugins match the slot records, as far as a channel has slots; further records are only
    /// kept. A plugin whose maker alone differs from the record's is taken, and the record follows it. Slots
    /// whose plugin is the record's keep it, settings and all. Slots whose index is marked in `recallSafe`
    /// keep what they have; after a session, those with no plugin that is live or being loaded follow their
    /// records too.
    void restoreFromStrips(const std::vector<bool>& recallSafe, RecordsFrom source);

    /// Sets the live plugins up for the owner's rate where they are at another, with the settings they have;
    /// their editors stay open. One that refuses leaves its slot; the sentences say so, for the user. Before
    /// a run.
    std::vector<std::string> followSampleRate();

    /// The plugin that is live in a slot, or null: the record's or, in a recall-safe slot or where it arrived
    /// late, another. Valid until the next operation.
    [[nodiscard]] const LoadedInsertPlugin* plugin(const PluginSlotKey& key) const;
    /// The settings of every strip, with every live plugin and its present state in its slot's record. The
    /// message line names a plugin whose state cannot be written.
    [[nodiscard]] std::vector<session::ChannelSettingsData> capturedChannels() const;

    /// A load that is under way.
    struct Load {
        platform::AVAudioUnitComponent component;
        PresetData presetData;
    };
    /// The last that was begun of each slot; gone where it could not be asked for.
    using PendingLoads = std::unordered_map<PluginSlotKey, std::weak_ptr<const Load>>;

    /// The live plugins at one moment, to go back to.
    struct LivePlugins {
        std::unordered_map<PluginSlotKey, std::shared_ptr<LoadedInsertPlugin>> plugins;
        PluginLoadStates loadStates;
        std::shared_ptr<bool> loadsAreWanted;
        PendingLoads pendingLoads;
    };
    [[nodiscard]] LivePlugins livePlugins();
    /// Makes those plugins the live ones again and forgets every load begun since, where no push of the
    /// inserts has succeeded without them. The caller pushes the inserts.
    void takeBack(LivePlugins before);

    /// The contexts of all slots have been handed over, or there is nobody to hand them to: plugins that were
    /// unloaded before are not in use from the next pass on.
    void insertsWerePushed();
    /// No pass runs any more. Plugins that an abandoned thread is within leave their slots.
    void runHasStopped();

  private:
    using Completion = platform::AudioUnitHost::InstantiationCompletion;

    [[nodiscard]] const session::PluginSlot* record(const PluginSlotKey& key) const;
    /// Puts the live plugin of a slot and its state into a record of the slot.
    void capture(const PluginSlotKey& key, session::PluginSlot& into) const;
    void setLoadState(const PluginSlotKey& key, PluginLoadState loadState);
    void unload(const PluginSlotKey& key);
    void unloadWhereNoSlotIs();
    void instantiate(
        const platform::AVAudioUnitComponent& component, const PluginSlotKey& key, PresetData presetData
    );
    void fail(
        const platform::AVAudioUnitComponent& component, const PluginSlotKey& key,
        const std::optional<platform::Error>& error
    );
    void finishLoad(
        std::shared_ptr<platform::AUAudioUnit> unit, const platform::AVAudioUnitComponent& component,
        const PluginSlotKey& key, const PresetData& presetData
    );
    /// False where the plugin takes no format.
    bool setUp(LoadedInsertPlugin& plugin, const PluginSlotKey& key, const PresetData& presetData = {});
    /// Marks the slot of a plugin that takes no format; the sentence for the user.
    std::string refuse(const platform::AVAudioUnitComponent& component, const PluginSlotKey& key);
    std::optional<std::string> followSampleRate(const PluginSlotKey& key);
    /// Takes a plugin that does not return from its slot and never frees it; the sentence for the user.
    std::string giveUp(const PluginSlotKey& key, const std::shared_ptr<LoadedInsertPlugin>& plugin);
    [[nodiscard]] std::string labelOf(const PluginSlotKey& key, const std::string& pluginName) const;
    [[nodiscard]] bool isLiveOrLoading(const PluginSlotKey& key) const;
    /// Whether the plugin is live, or being loaded with these settings.
    [[nodiscard]] bool isThere(
        const PluginSlotKey& key, const session::AUComponentIdentity& identity, const PresetData& presetData
    ) const;
    /// Makes the slot's record name another component, with the settings it has.
    void rename(const PluginSlotKey& key, const platform::AVAudioUnitComponent& component);
    /// For a record that names a plugin.
    void restoreSlot(
        const PluginSlotKey& key, const session::PluginSlot& slot, const std::string& stripName,
        const std::vector<platform::AVAudioUnitComponent>& installed
    );
    void takeEditor(
        const PluginSlotKey& key, const std::shared_ptr<LoadedInsertPlugin>& plugin,
        std::shared_ptr<platform::AUViewController> editor
    );
    void openWindow(const LoadedInsertPlugin& plugin);
    /// Runs `task` on the main thread if the rack is there then. Any thread.
    [[nodiscard]] std::function<void(std::function<void()>)> onMainThread();

    InsertRackOwner& owner;
    Services services;
    std::unordered_map<PluginSlotKey, std::shared_ptr<LoadedInsertPlugin>> loadedPlugins;
    PendingLoads pendingLoads;
    /// Lets an instance that arrives find out that its load was taken back.
    std::shared_ptr<bool> loadsAreWanted = std::make_shared<bool>(true);
    RetiredPlugins retired;
    /// In the order the windows were opened.
    std::vector<std::unique_ptr<platform::NSWindowController>> pluginEditorWindowControllers;
    /// Lets what arrives late find out that the rack is gone.
    std::shared_ptr<const bool> isHere = std::make_shared<const bool>(true);
};

} // namespace orvane::plugins
