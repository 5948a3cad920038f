#pragma once

#include "audio/meter_model.h"
#include "audio/meter_timer.h"
#include "engine/engine_state.h"
#include "engine/midi_input.h"
#include "engine/mix_backup.h"
#include "engine/plugin_operations.h"
#include "engine/running_audio.h"
#include "engine/services.h"
#include "engine/session/mixer_document_data.h"
#include "engine/show.h"
#include "engine/snapshot_list.h"
#include "engine/standstill_watch.h"
#include "platform/base/result.h"
#include "platform/base/uuid.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace orvane::engine {

/// The controller of one mixer of N strips: holds what is published, turns the user's actions into changes of
/// it and, while it runs, pushes every change into the objects that the audio thread reads. Operations with
/// an unknown strip, or that do not apply, do nothing. Main thread.
class MixerEngine final {
  public:
    /// Stopped, with N default strips; neither looks for devices nor starts audio.
    MixerEngine(std::size_t channelCount, Services platformServices);
    ~MixerEngine();
    MixerEngine(const MixerEngine&) = delete;
    MixerEngine& operator=(const MixerEngine&) = delete;

    /// What views subscribe to.
    [[nodiscard]] const EngineState& state() const { return published; }
    [[nodiscard]] audio::MeterModel& meterModel() { return meters; }

    // Lifecycle.

    // An operation that starts, loads or recalls leaves everything as it was where there is not enough memory
    // for it, and `lastError` says so. The others then throw std::bad_alloc.

    /// Lists the devices anew, builds the audio path and starts it; `lastError` says what failed, or what to
    /// mind where it runs. Nothing where it runs already.
    void start();
    /// Returns within `platform::stopPatience`, also if a plugin does not return from its processing: that
    /// one then leaves its slot, and `lastError` says so.
    void stop();

    /// Takes one of the offered sizes, others not; starts a running engine again.
    void setBufferSize(std::int64_t frameCount);

    // Devices. A running engine takes them at its next start.

    /// Lists the devices, and takes what the chosen ones are now.
    void refreshDevices();
    /// Also fills the routing that is still open and takes the master bus off outputs that are not there.
    void selectDevice(const audio::AudioDeviceInfo& device);
    void selectMasterOutputDevice(const std::optional<audio::AudioDeviceInfo>& device);

    /// Shows a sentence about something that the engine does not do itself in `lastError`.
    void report(std::string sentence) { published.lastError.set(std::move(sentence)); }

    /// The selected device's latency of one buffer, in ms; 0 without a device.
    [[nodiscard]] double bufferLatencyMs() const;
    /// What the rings of the selected device take, in bytes; 0 without a device.
    [[nodiscard]] std::int64_t ringBufferBytes() const;

    // MIDI. The engine listens from its construction on; sources that come or go are published by themselves.

    void refreshMIDIDevices();
    /// Absent = all sources. An id that no source has leaves nothing to listen to until one comes.
    void selectMIDIDevice(std::optional<std::int32_t> sourceID);
    /// What the selected source was called when it was selected, also while it is unplugged; empty if it was
    /// not there.
    [[nodiscard]] const std::string& selectedMIDIDeviceName() const { return midiInput.selectedName(); }

    // Strips. Device channels count from 0.

    void setName(const platform::Uuid& strip, std::string name);
    void setInputChannel(const platform::Uuid& strip, std::optional<std::int64_t> channel);
    void setOutputChannel(const platform::Uuid& strip, std::optional<std::int64_t> channel);
    void setStereo(const platform::Uuid& strip, bool on);
    void setStereoPair(const platform::Uuid& strip, std::int64_t left);
    void setPan(const platform::Uuid& strip, double pan);
    void setGenderMode(const platform::Uuid& strip, dsp::GenderTriggerMode mode);
    void setVocalRole(const platform::Uuid& strip, dsp::VocalRole role);
    void setMuted(const platform::Uuid& strip, bool muted);
    void setBypassed(const platform::Uuid& strip, bool bypassed);
    /// A linear factor, not bounded.
    void setTrim(const platform::Uuid& strip, double trim);

    // Master section. Heard first and then shown.

    void setMasterTargetDB(double targetDB);
    void setLeadGroupGainDB(double gainDB);
    void setBackingGroupGainDB(double gainDB);
    void setReferenceNoiseGain(double linearGain);
    void setDuckerReleaseMs(double releaseMs);
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

    /// Selects the scene and makes it the mix; plugins in recall-safe slots stay as they are.
    void recallSnapshot(std::int64_t index);
    void recallCurrentSnapshot();
    /// Only of the slots that have such a flag, the first three.
    void setRecallSafe(bool isSafe, std::int64_t slot);

    void beginMIDILearn() { scenes.beginLearn(); }
    void cancelMIDILearn() { scenes.cancelLearn(); }
    /// Teaches the note to the scene that is learning, or recalls the first scene that knows it.
    void handleMIDINote(const session::MIDITrigger& note);

    // Insert plugins. Slots count from 0; what `PluginOperations` and its rack say of each holds here.

    /// Any thread but the audio ones, for the first call may take seconds.
    [[nodiscard]] std::vector<platform::AVAudioUnitComponent> availableInsertComponents();
    void loadPlugin(
        const platform::AVAudioUnitComponent& component, std::size_t slot, const platform::Uuid& strip,
        const std::optional<platform::PropertyList::Data>& presetData = {}
    );
    void removePlugin(std::size_t slot, const platform::Uuid& strip);
    void setPluginBypassed(bool bypassed, std::size_t slot, const platform::Uuid& strip);
    void openPluginEditor(std::size_t slot, const platform::Uuid& strip);
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
    void restorePluginsFromStrips(plugins::RecordsFrom source = plugins::RecordsFrom::scene);

    void copyPlugin(std::size_t slot, const platform::Uuid& strip);
    void toggleCopyArm();
    void togglePasteArm();
    void cancelClipboardArm();
    bool handleClipboardClick(std::size_t slot, const platform::Uuid& strip);

    [[nodiscard]] std::vector<plugins::NamedPreset> pluginPresets(const session::AUComponentIdentity& identity
    ) const;
    /// The settings that come with the live plugin of a slot.
    [[nodiscard]] std::vector<platform::AUAudioUnitPreset>
    factoryPresets(std::size_t slot, const platform::Uuid& strip) const;
    void applyFactoryPreset(
        const platform::AUAudioUnitPreset& preset, std::size_t slot, const platform::Uuid& strip
    );
    void savePluginPreset(const std::string& name, std::size_t slot, const platform::Uuid& strip);
    void savePluginPresetOnAllChannels(const std::string& name, std::size_t slot);
    void applyPluginPreset(const plugins::NamedPreset& preset, std::size_t slot, const platform::Uuid& strip);
    void deletePluginPreset(const platform::Uuid& id, const session::AUComponentIdentity& identity);

    // Sessions.

    [[nodiscard]] session::MixerDocumentData makeDocumentData() const;
    void applyDocument(const session::MixerDocumentData& document);
    /// The same for callers that tell the user themselves: the error is the whole sentence, and `lastError`
    /// does not have it.
    [[nodiscard]] platform::Result<platform::Done> loadDocument(const session::MixerDocumentData& document);

    // The run; nothing and 0 while stopped.

    [[nodiscard]] const dsp::AutomixProcessor* automix() const {
        return running ? &running->automix() : nullptr;
    }
    /// Smoothed share of a block's duration that the render pass takes, 0 to 1.
    [[nodiscard]] double renderLoad() const { return running ? running->realtimeState()->cpuLoad() : 0.0; }
    [[nodiscard]] std::uint32_t xrunCount() const { return running ? running->xrunCount() : 0; }
    [[nodiscard]] int realtimePriority() const { return running ? running->realtimePriority() : 0; }

  private:
    enum class Extent { mix, mixAndSnapshots };
    /// Makes `change`, which goes so far, or nothing of it where there is not enough memory for all; true if
    /// it did.
    bool changeMix(Extent extent, const std::function<void()>& change);
    void recall(const std::function<void()>& change);
    /// As each note by itself; in a storm of them, of the scenes that they recall only the last is.
    void handleMIDINotes(std::span<const midi::NoteMessage> notes);
    [[nodiscard]] MixBackup backUp(Extent extent);
    void takeBack(MixBackup before);

    /// Makes `begin` start the audio path, or stops what has begun where there is not enough memory.
    void startWhole(const std::function<void()>& begin);
    /// Starts on the chosen devices as they are now; throws std::bad_alloc, half started, where
    /// there is not enough memory. While stopped.
    void startOrThrow();
    /// Takes an offered size, and stops the engine for it; true where it is to be started again.
    bool takeBufferSize(std::int64_t frameCount);
    void takeDocument(const session::MixerDocumentData& document);
    void recallSelected();

    void editMaster(const std::function<void(session::MasterSettings&)>& edit);
    void setMaster(const session::MasterSettings& settings);
    void editStrip(const platform::Uuid& strip, const std::function<void(session::ChannelStrip&)>& edit);
    void editStrips(const std::function<void(std::vector<session::ChannelStrip>&)>& edit);
    void pushStrips();
    void pushRouting(const session::MasterOutputRouting& master);
    /// Asks after the chosen devices, and no others, which may have come back at another rate or with other
    /// channels.
    void describeChosenDevices();
    /// Takes the description over if the device is a chosen one.
    void updateChosenDevices(const audio::AudioDeviceInfo& device);
    /// True if it took the master bus off outputs that do not exist.
    bool validateMasterOutputRouting();
    [[nodiscard]] std::int64_t masterCapacity() const;
    [[nodiscard]] session::Snapshot captureMix() const;
    [[nodiscard]] Show show() const;
    [[nodiscard]] RunningAudio::Observer makeObserver();
    void reportBufferSizeChange(
        RunningAudio::Role role, const audio::AudioDeviceInfo& device, std::uint32_t frameCount
    );
    void followSampleRate(const audio::AudioDeviceInfo& device);
    void reportLostChannels(const audio::AudioDeviceInfo& device);
    void reportDeath(RunningAudio::Role role, const audio::AudioDeviceInfo& device);
    void reportStandstill(const audio::MixerRealtimeState& state, bool standsStill);

    const Services services;
    EngineState published;
    SnapshotList scenes{published};
    audio::MeterModel meters;
    /// Outlives the run, whose passes may use its plugins.
    PluginOperations pluginOperations;
    std::unique_ptr<RunningAudio> running;
    audio::MeterTimer meterTimer;
    StandstillWatch standstillWatch;
    /// Lets tasks that were posted during a run find out that it is over; renewed at every start.
    std::shared_ptr<const bool> runIsOn;
    MIDIInput midiInput;
};

} // namespace orvane::engine
