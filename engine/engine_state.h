#pragma once

#include "audio/audio_device_info.h"
#include "engine/session/channel_strip.h"
#include "engine/session/master_settings.h"
#include "engine/session/snapshot.h"
#include "midi/midi_device_info.h"
#include "platform/base/published.h"
#include "platform/base/uuid.h"
#include "plugins/plugin_clipboard.h"
#include "plugins/plugin_load_state.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvane::engine {

/// What the engine shows: every value with its subscribers. Only the engine changes it; main thread.
struct EngineState {
    platform::Published<std::vector<session::ChannelStrip>> channelStrips;
    /// What can be selected.
    platform::Published<std::vector<audio::AudioDeviceInfo>> availableDevices;
    /// The device that is captured from and played to.
    platform::Published<std::optional<audio::AudioDeviceInfo>> selectedDevice;
    /// A device of its own for the master bus; absent = the selected device.
    platform::Published<std::optional<audio::AudioDeviceInfo>> masterOutputDevice;
    platform::Published<bool> isRunning{false};
    /// Why there is no sound although the user has not stopped the audio: it has stopped by itself, or stands
    /// still. Absent otherwise.
    platform::Published<std::optional<std::string>> audioLoss;
    /// The message line: the last error or warnings, as complete sentences.
    platform::Published<std::optional<std::string>> lastError;
    platform::Published<plugins::PluginLoadStates> pluginLoadStates;
    platform::Published<std::optional<plugins::CopiedPlugin>> pluginClipboard;
    platform::Published<plugins::PluginClipboardArmState> pluginClipboardArmState{
        plugins::PluginClipboardArmState::none};
    /// Whether there is a paste to undo.
    platform::Published<bool> canUndoPaste{false};
    platform::Published<session::MasterSettings> master;
    /// The requested device buffer size, in frames.
    platform::Published<std::int64_t> bufferSize{512};
    platform::Published<std::vector<session::Snapshot>> snapshots;
    platform::Published<std::optional<std::int64_t>> currentSnapshotIndex;
    /// The id of the scene that the mix was last recalled from or stored in; absent = none.
    platform::Published<std::optional<platform::Uuid>> playedSnapshotID;
    /// The scene that is recalled next: the one chosen since the last recall, or else the one after that;
    /// absent = none.
    platform::Published<std::optional<std::int64_t>> nextSnapshotIndex;
    /// Entry i is true if recalls keep what is live in slot i of every strip. Loads keep it too, except in
    /// empty slots.
    platform::Published<std::vector<bool>> pluginSlotRecallSafe{std::vector<bool>(3, false)};
    /// The index of the scene whose recalling note is being learnt; absent = none.
    platform::Published<std::optional<std::int64_t>> midiLearnTargetIndex;
    platform::Published<std::vector<midi::MIDIDeviceInfo>> availableMIDIDevices;
    /// The one source that notes are taken from; absent = all sources.
    platform::Published<std::optional<std::int32_t>> selectedMIDIDeviceID;
};

} // namespace orvane::engine
