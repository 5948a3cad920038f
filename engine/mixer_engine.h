#pragma once

#include "audio/meter_model.h"
#include "audio/meter_timer.h"
#include "dsp/automix_processor.h"
#include "engine/device_selection.h"
#include "engine/engine_state.h"
#include "engine/insert_rack.h"
#include "engine/midi_input.h"
#include "engine/mix.h"
#include "engine/paste_history.h"
#include "engine/running_audio.h"
#include "engine/services.h"
#include "engine/session/channel_strip.h"
#include "engine/session/master_settings.h"
#include "engine/session/mixer_document_data.h"
#include "engine/snapshot_list.h"
#include "engine/standstill_watch.h"
#include "platform/base/result.h"
#include "platform/base/uuid.h"
#include "platform/effects/audio_unit_host.h"
#include "platform/files/property_list.h"
#include "plugins/insert_components.h"
#include "plugins/plugin_preset_store.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace orvane::engine {

/// The controller of one mixer of N strips: turns the user's actions into operations of its parts, which are
/// the mix, the devices and the run on them, the insert rack, the scenes, the clipboard and the presets.
/// Operations with an unknown strip, or that do not apply, do nothing. Main thread.
class MixerEngine final {
  public:
    /// Stopped, with N default strips; neither looks for devices nor starts audio.
    MixerEngine(std::size_t channelCount, Services platformServices);
    MixerEngine(const MixerEngine&) = delete;
    MixerEngine& operator=(const MixerEngine&) = delete;

    /// What views subscribe to.
    [[nodiscard]] const EngineState& state() const { return published; }
    [[nodiscard]] audio::MeterModel& meterModel() { return meters; }

    // Lifecycle.

    // An operation that starts, loads or recalls leaves everything as it was if memory runs out, which
    // `lastError` reports. The others then throw std::bad_alloc.

    /// Asks for the chosen devices as they are now, builds the audio path and starts it; `lastError` has what
    /// failed, or the warnings of a start that succeeded. Does nothing while running.
    void start();
    /// Returns within `platform::stopPatience`, also if a plugin does not return from its processing: that
    /// one then leaves its slot, which `lastError` reports.
    void stop();
    /// Stops, if running, and starts. If that fails, `audioLoss` has the reason too.
    void restart();

    /// Takes one of the offered sizes, others not; starts a running engine again.
    void setBufferSize(std::int64_t frameCount);

    // Devices. A running engine takes them at its next start.

    /// Lists the devices, and takes what the chosen ones are now.
    void refreshDevices() { devices.refresh(); }
    /// Also fills the routing that is still open and takes the master bus off outputs that are not there.
    void selectDevice(const audio::AudioDeviceInfo& device) { devices.select(device); }
    void selectMasterOutputDevice(const std::optional<audio::AudioDeviceInfo>& device) {
        devices.selectMaster(device);
    }
    /// The selected device's latency of one buffer, in ms; 0 without a device.
    [[nodiscard]] double bufferLatencyMs() const { return devices.bufferLatencyMs(); }
    /// What the rings of the selected device take, in bytes; 0 without a device.
    [[nodiscard]] std::int64_t ringBufferBytes() const { return devices.ringBufferBytes(); }

    /// Shows a sentence about something that the engine does not do itself in `lastError`.
    void report(std::string sentence) { published.lastError.set(std::move(sentence)); }

    // MIDI. The engine listens from its construction on; sources that come or go are published by themselves.

    void refreshMIDIDevices() { midiInput.refreshDevices(); }
    /// Absent = all sources. An id that no source has leaves nothing to listen to until one comes.
    void selectMIDIDevice(std::optional<std::int32_t> sourceID) { midiInput.select(sourceID); }
    /// What the selected source was called when it was selected, also while it is unplugged; empty if it was
    /// not there.
    [[nodiscard]] const std::string& selectedMIDIDeviceName() const { return midiInput.selectedName(); }

    // Strips. Device channels count from 0.

    void setName(const platform::Uuid& strip, std::string name) {
        set(strip, &session::ChannelStrip::name, std::move(name));
    }
    void setInputChannel(const platform::Uuid& strip, std::optional<std::int64_t> channel) {
        set(strip, &session::ChannelStrip::inputChannelIndex, channel);
    }
    void setOutputChannel(const platform::Uuid& strip, std::optional<std::int64_t> channel);
    void setStereo(const platform::Uuid& strip, bool on);
    void setStereoPair(const platform::Uuid& strip, std::int64_t left);
    void setPan(const platform::Uuid& strip, double pan);
    void setGenderMode(const platform::Uuid& strip, dsp::GenderTriggerMode mode) {
        set(strip, &session::ChannelStrip::genderMode, mode);
    }
    void setVocalRole(const platform::Uuid& strip, dsp::VocalRole role) {
        set(strip, &session::ChannelStrip::vocalRole, role);
    }
    void setMuted(const platform::Uuid& strip, bool muted) {
        set(strip, &session::ChannelStrip::muted, muted);
    }
    void setBypassed(const platform::Uuid& strip, bool bypassed) {
        set(strip, &session::ChannelStrip::bypassed, bypassed);
    }
    /// A linear factor, not bounded.
    void setTrim(const platform::Uuid& strip, double trim) { set(strip, &session::ChannelStrip::trim, trim); }

    // Master section. Played first and then shown.

    void setMasterTargetDB(double targetDB) { set(&session::MasterLevels::masterTargetDB, targetDB); }
    void setLeadGroupGainDB(double gainDB) { set(&session::MasterLevels::leadGroupGainDB, gainDB); }
    void setBackingGroupGainDB(double gainDB) { set(&session::MasterLevels::backingGroupGainDB, gainDB); }
    void setReferenceNoiseGain(double linearGain) {
        set(&session::MasterSettings::referenceNoiseGain, linearGain);
    }
    void setDuckerReleaseMs(double releaseMs) { set(&session::MasterSettings::duckerReleaseMs, releaseMs); }
    void setOutputOptions(const dsp::OutputOptions& options);
    void setMasterOutputRouting(const session::MasterOutputRouting& routing);
    void setMasterOutputChannel(std::optional<std::int64_t> channel);
    void setMasterStereo(bool on);
    void setMasterStereoPair(std::int64_t left);

    // The whole routing.

    void resetRoutingOneToOne();
    void allOutputsOff();

    // Scenes: what `SnapshotList` does with the mix as it is now, and their recall.

    void newSnapshot(std::optional<std::string> name = std::nullopt);
    void insertSnapshot();
    void storeSnapshot();
    void copySnapshot() { scenes.copy(); }
    void deleteSnapshot() { scenes.remove(); }
    void undoSnapshotEdit() { scenes.undo(); }
    void renameSnapshot(std::int64_t index, std::string name) { scenes.rename(index, std::move(name)); }
    void selectPreviousSnapshot() { scenes.selectPrevious(); }
    void selectNextSnapshot() { scenes.selectNext(); }
    void selectSnapshot(std::int64_t index) { scenes.select(index); }
    /// Moves what is recalled next by one scene, and selects it.
    void chooseEarlierSnapshot() { scenes.chooseEarlier(); }
    void chooseLaterSnapshot() { scenes.chooseLater(); }

    /// Selects the scene and makes it the mix; plugins in recall-safe slots stay as they are.
    void recallSnapshot(std::int64_t index);
    void recallCurrentSnapshot();
    void recallNextSnapshot();
    /// The scene that the mix was last recalled from or stored in; null if there is none. Valid until the
    /// next operation.
    [[nodiscard]] const session::Snapshot* playedSnapshot() const { return scenes.played(); }
    /// Whether the mix has changed since then, so that another recall of that scene would change it. Asks no
    /// plugin: recalls leave the settings of plugins that stay.
    [[nodiscard]] bool hasLeftPlayedSnapshot() const;
    /// Only of the slots that have such a flag, the first three.
    void setRecallSafe(bool isSafe, std::int64_t slot);

    void beginMIDILearn() { scenes.beginLearn(); }
    void cancelMIDILearn() { scenes.cancelLearn(); }
    /// Teaches the note to the scene that is learning, or recalls the first scene that knows it.
    void handleMIDINote(const session::MIDITrigger& note);

    // Insert plugins. Slots count from 0; what `InsertRack` says of each holds here. Operations without the
    // live plugin that they need do nothing.

    /// Any thread but the audio ones, for the first call may take seconds.
    [[nodiscard]] std::vector<platform::AVAudioUnitComponent> availableInsertComponents() {
        return plugins::availableInsertComponents(services.audioUnitHost);
    }
    void loadPlugin(
        const platform::AVAudioUnitComponent& component, std::size_t slot, const platform::Uuid& strip,
        const std::optional<platform::PropertyList::Data>& presetData = {}
    ) {
        rack.load(component, {strip, slot}, presetData);
    }
    void removePlugin(std::size_t slot, const platform::Uuid& strip) { rack.remove({strip, slot}); }
    void setPluginBypassed(bool bypassed, std::size_t slot, const platform::Uuid& strip) {
        rack.setBypassed({strip, slot}, bypassed);
    }
    void openPluginEditor(std::size_t slot, const platform::Uuid& strip) { rack.openEditor({strip, slot}); }
    void restorePluginsFromStrips(RecordsFrom source = RecordsFrom::scene) { rack.restoreFromStrips(source); }
    /// What is live in a slot, or null; changes together with the load states. Valid until the next
    /// operation.
    [[nodiscard]] const platform::AVAudioUnitComponent*
    livePlugin(std::size_t slot, const platform::Uuid& strip) const;
    /// By how much the plugin in a slot delays its strip, in milliseconds, as of its last block; 0 without a
    /// live plugin.
    [[nodiscard]] double pluginLatencyMs(std::size_t slot, const platform::Uuid& strip) const;
    /// The present settings of the plugin that is live in a slot; absent without one, or if it has none.
    [[nodiscard]] std::optional<session::SharedList<std::uint8_t>>
    pluginSettings(std::size_t slot, const platform::Uuid& strip) const;

    void copyPlugin(std::size_t slot, const platform::Uuid& strip);
    void toggleCopyArm();
    void togglePasteArm();
    void cancelClipboardArm();
    /// Copies from or pastes to a slot if that is armed; returns false if the click means something else.
    bool handleClipboardClick(std::size_t slot, const platform::Uuid& strip);
    /// Loads again what the last paste replaced, with the settings that it had.
    void undoPaste() { pastes.undo(); }

    [[nodiscard]] std::vector<plugins::NamedPreset> pluginPresets(const session::AUComponentIdentity& identity
    ) const {
        return presets.presets(identity);
    }
    /// The settings that come with the live plugin of a slot.
    [[nodiscard]] std::vector<platform::AUAudioUnitPreset>
    factoryPresets(std::size_t slot, const platform::Uuid& strip) const;
    void applyFactoryPreset(
        const platform::AUAudioUnitPreset& preset, std::size_t slot, const platform::Uuid& strip
    ) {
        rack.applyFactoryPreset(preset, {strip, slot});
    }
    void savePluginPreset(const std::string& name, std::size_t slot, const platform::Uuid& strip);
    void savePluginPresetOnAllChannels(const std::string& name, std::size_t slot);
    void applyPluginPreset(const plugins::NamedPreset& preset, std::size_t slot, const platform::Uuid& strip);
    void deletePluginPreset(const platform::Uuid& id, const session::AUComponentIdentity& identity) {
        presets.remove(id, identity);
    }

    // Sessions.

    [[nodiscard]] session::MixerDocumentData makeDocumentData() const;
    void applyDocument(const session::MixerDocumentData& document);
    /// The same for callers that tell the user themselves: the error is the whole sentence, and `lastError`
    /// does not have it.
    [[nodiscard]] platform::Result<platform::Done> loadDocument(const session::MixerDocumentData& document);

    // The run; nothing and 0 while stopped.

    [[nodiscard]] const dsp::AutomixProcessor* automix() const {
        return mix.run() ? &mix.run()->automix() : nullptr;
    }
    /// The main device that plays; the selected one may be another, which is used from the next start.
    [[nodiscard]] std::optional<audio::AudioDeviceInfo> playingDevice() const {
        return mix.run() ? std::optional(mix.run()->mainDevice()) : std::nullopt;
    }
    /// Smoothed share of a block's duration that the render pass takes, 0 to 1.
    [[nodiscard]] double renderLoad() const {
        return mix.run() ? mix.run()->realtimeState()->cpuLoad() : 0.0;
    }
    /// The peaks since the last call or tick of the meters.
    [[nodiscard]] audio::PeakReading takePeaks() const {
        return mix.run() ? mix.run()->realtimeState()->takePeaks() : audio::PeakReading{};
    }
    [[nodiscard]] std::uint32_t xrunCount() const { return mix.run() ? mix.run()->xrunCount() : 0; }
    [[nodiscard]] int realtimePriority() const { return mix.run() ? mix.run()->realtimePriority() : 0; }

  private:
    template <class Value>
    void
    set(const platform::Uuid& strip, Value session::ChannelSettingsData::*setting,
        std::type_identity_t<Value> value) {
        mix.editStrip(strip, [&](session::ChannelStrip& edited) { edited.*setting = std::move(value); });
    }
    void set(double session::MasterLevels::*level, double value) {
        mix.editMaster([=](session::MasterSettings& edited) { edited.levels.*level = value; });
    }
    void set(double session::MasterSettings::*setting, double value) {
        mix.editMaster([=](session::MasterSettings& edited) { edited.*setting = value; });
    }

    /// All that loading a session or recalling a scene changes.
    struct Backup;
    [[nodiscard]] Backup backUp();
    void takeBack(Backup before);
    /// Applies `change`; rolls it back if memory runs out. Returns whether it was applied.
    bool changeMix(const std::function<void()>& change);
    void recall(const std::function<void()>& change);
    void recallSelected();
    /// As each note by itself; in a storm of them, of the scenes that they recall only the last is.
    void handleMIDINotes(std::span<const midi::NoteMessage> notes);
    [[nodiscard]] session::Snapshot captureMix() const;
    void takeDocument(const session::MixerDocumentData& document);

    /// Starts on the chosen devices as they are now; throws std::bad_alloc, half started, if memory runs
    /// out. While stopped.
    void startOrThrow();
    /// Takes an offered size, and stops the engine for it; returns true if it is to be started again.
    bool takeBufferSize(std::int64_t frameCount);
    /// Brings what the hardware reports during a run to the main thread, until that run has ended.
    [[nodiscard]] RunningAudio::Observer observerOf(const std::shared_ptr<RunningAudio>& observed);
    void reportBufferSizeChange(
        RunningAudio::Role role, const audio::AudioDeviceInfo& device, std::uint32_t frameCount
    );
    void followSampleRate(const audio::AudioDeviceInfo& device);
    void reportLostChannels(const audio::AudioDeviceInfo& device);
    void reportDeath(RunningAudio::Role role, const audio::AudioDeviceInfo& device);
    /// Shows the reason if audio that ran has not started again.
    void reportFailedRestart();
    /// Shows a sentence about audio that has stopped by itself or stands still.
    void reportLoss(std::string sentence);
    void reportStandstill(const audio::MixerRealtimeState& state, bool standsStill);

    /// The settings that a plugin has now; absent if it has none to save, which `lastError` reports.
    std::optional<plugins::NewPreset> presetOf(const std::string& name, const plugins::PluginSlotKey& key);

    const Services services;
    EngineState published;
    Mix mix;
    DeviceSelection devices{mix, published, services};
    SnapshotList scenes{published};
    audio::MeterModel meters;
    InsertRack rack;
    PasteHistory pastes{rack, published};
    plugins::PluginPresetStore presets;
    audio::MeterTimer meterTimer;
    StandstillWatch standstillWatch;
    MIDIInput midiInput;
};

} // namespace orvane::engine
