#pragma once

#include "engine/engine_state.h"
#include "engine/mix.h"
#include "engine/services.h"
#include "engine/session/au_component_identity.h"
#include "engine/session/channel_settings_data.h"
#include "engine/session/channel_strip.h"
#include "engine/session/plugin_slot.h"
#include "engine/session/shared_list.h"
#include "platform/base/published.h"
#include "platform/base/result.h"
#include "platform/effects/audio_unit_host.h"
#include "platform/effects/editor_windows.h"
#include "plugins/loaded_insert_plugin.h"
#include "plugins/plugin_load_state.h"
#include "plugins/plugin_slot_key.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace orvane::engine {

/// What the slot records were replaced by.
enum class RecordsFrom { scene, session };

/// Brings the live plugins of a mix to life from its slot records, and publishes how far each has come.
/// Operations with a slot that does not exist do nothing. Owned by the mixer engine, on the main thread;
/// whatever arrives late or from another thread is moved there, or finds the rack gone.
class InsertRack final {
  public:
    using PluginSlotKey = plugins::PluginSlotKey;

    /// All three outlive the rack.
    InsertRack(Mix& mixOfRack, EngineState& engineState, const Services& engineServices);
    InsertRack(const InsertRack&) = delete;
    InsertRack& operator=(const InsertRack&) = delete;

    /// A plugin's state, absent for its defaults.
    using PresetData = std::optional<session::SharedList<std::uint8_t>>;

    /// Replaces a slot's plugin; it becomes live once its instance is there.
    void load(
        const platform::AVAudioUnitComponent& component, const PluginSlotKey& key,
        const PresetData& presetData
    );
    /// The record of a slot with the present state of its live plugin; absent without the slot.
    [[nodiscard]] std::optional<session::PluginSlot> captured(const PluginSlotKey& key) const;
    /// Replaces a slot's record and its plugin by what the record names, settings included.
    void restore(const PluginSlotKey& key, const session::PluginSlot& slot);
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
    /// whose plugin is the record's keep it, settings and all. Recall-safe slots keep what they have; after a
    /// session, those with no plugin that is live or being loaded follow their records too.
    void restoreFromStrips(RecordsFrom source);

    /// Sets the live plugins up for the selected device's rate if they are at another, with the settings they
    /// have; their editors stay open. One that refuses leaves its slot; the sentences are for the user.
    /// Before a run.
    std::vector<std::string> followSampleRate();

    /// Every slot that can hold a live plugin, strip by strip. A copy, because subscribers to what is done
    /// with one slot may change the strips.
    [[nodiscard]] std::vector<PluginSlotKey> slots() const;
    /// The settings of every strip, with every live plugin and its present state in its slot's record. The
    /// message line names a plugin whose state cannot be written.
    [[nodiscard]] std::vector<session::ChannelSettingsData> capturedChannels() const;

    /// A load that is under way.
    struct Load {
        platform::AVAudioUnitComponent component;
        PresetData presetData;
    };
    /// The last that was begun of each slot; gone if it could not be asked for.
    using PendingLoads = std::unordered_map<PluginSlotKey, std::weak_ptr<const Load>>;

    /// How far the loads were at one moment, to go back to.
    struct Loads {
        plugins::PluginLoadStates states;
        std::shared_ptr<bool> areWanted;
        PendingLoads pending;
    };
    [[nodiscard]] Loads loads();
    /// Forgets every load begun since. After the mix has been taken back.
    void takeBack(Loads before);

    /// No pass runs any more. Plugins that an abandoned thread is within leave their slots.
    void runHasStopped();

  private:
    /// The strip of a slot, or null.
    [[nodiscard]] const session::ChannelStrip* strip(const PluginSlotKey& key) const;
    [[nodiscard]] const session::PluginSlot* record(const PluginSlotKey& key) const;
    void editRecord(const PluginSlotKey& key, const std::function<void(session::PluginSlot&)>& edit);
    /// Puts the live plugin of a slot and its state into a record of the slot.
    void capture(const PluginSlotKey& key, session::PluginSlot& into) const;
    void setLoadState(const PluginSlotKey& key, plugins::PluginLoadState loadState);
    void unload(const PluginSlotKey& key);
    void unloadWithoutSlot();
    void instantiate(const PluginSlotKey& key, Load begun);
    void finishLoad(const PluginSlotKey& key, const Load& load, std::shared_ptr<platform::AUAudioUnit> unit);
    void failLoad(const PluginSlotKey& key, const Load& load, const std::optional<platform::Error>& error);
    /// Returns false if the plugin takes no format.
    bool
    setUp(plugins::LoadedInsertPlugin& plugin, const PluginSlotKey& key, const PresetData& presetData = {});
    /// Marks the slot of a plugin that takes no format; the sentence for the user.
    std::string refuse(const platform::AVAudioUnitComponent& component, const PluginSlotKey& key);
    std::optional<std::string> followSampleRate(const PluginSlotKey& key);
    /// Takes a plugin that does not return from its slot and never frees it; the sentence for the user.
    std::string giveUp(const PluginSlotKey& key, const std::shared_ptr<plugins::LoadedInsertPlugin>& plugin);
    [[nodiscard]] std::string labelOf(const PluginSlotKey& key, const std::string& pluginName) const;
    [[nodiscard]] bool isLiveOrLoading(const PluginSlotKey& key) const;
    /// Whether the plugin is live, or being loaded with these settings.
    [[nodiscard]] bool isThere(
        const PluginSlotKey& key, const session::AUComponentIdentity& identity, const PresetData& presetData
    ) const;
    /// For a record that names a plugin.
    void restoreSlot(
        const PluginSlotKey& key, const session::PluginSlot& slot,
        const std::vector<platform::AVAudioUnitComponent>& installed
    );
    void takeEditor(
        const PluginSlotKey& key, const std::shared_ptr<plugins::LoadedInsertPlugin>& plugin,
        std::shared_ptr<platform::AUViewController> editor
    );
    void openWindow(const plugins::LoadedInsertPlugin& plugin);
    /// The rate that plugins are to work at, in Hz.
    [[nodiscard]] double sampleRate() const;
    /// For what arrives on other threads, perhaps after the rack is gone.
    [[nodiscard]] platform::MainThread::Poster poster() { return {services.mainThread, isHere}; }

    Mix& mix;
    EngineState& state;
    const Services& services;
    platform::Subscription sampleRateHeard;
    PendingLoads pendingLoads;
    /// Lets an instance that arrives find out that its load was taken back.
    std::shared_ptr<bool> loadsAreWanted = std::make_shared<bool>(true);
    /// In the order the windows were opened.
    std::vector<std::unique_ptr<platform::NSWindowController>> pluginEditorWindowControllers;
    /// Lets what arrives late find out that the rack is gone.
    std::shared_ptr<const bool> isHere = std::make_shared<const bool>(true);
};

} // namespace orvane::engine
