#pragma once

#include "audio/audio_device_info.h"
#include "audio/published.h"
#include "engine/session/channel_strip.h"
#include "engine/session/master_settings.h"
#include "engine/session/snapshot.h"
#include "midi/midi_device_info.h"
#include "plugins/plugin_clipboard.h"
#include "plugins/plugin_load_state.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvane::engine {

/// What the engine shows: every value with its subscribers. Only the engine changes it; main thread.
struct EngineState {
    audio::Published<std::vector<session::ChannelStrip>> channelStrips;
    /// What can be selected.
    audio::Published<std::vector<audio::AudioDeviceInfo>> availableDevices;
    /// Why others that the machine has cannot, and what to do about it.
    audio::Published<std::optional<std::string>> deviceAdvice;
    /// The device that is captured from and played to.
    audio::Published<std::optional<audio::AudioDeviceInfo>> selectedDevice;
    /// A device of its own for the master bus; absent = the selected device.
    audio::Published<std::optional<audio::AudioDeviceInfo>> masterOutputDevice;
    audio::Published<bool> isRunning{false};
    /// The message line: the last error or warnings, as complete sentences.
    audio::Published<std::optional<std::string>> lastError;
    audio::Published<plugins::PluginLoadStates> pluginLoadStates;
    audio::Published<std::optional<plugins::CopiedPlugin>> pluginClipboard;
    audio::Published<plugins::PluginClipboardArmState> pluginClipboardArmState{
        plugins::PluginClipboardArmState::none};
    audio::Published<session::MasterSettings> master;
    /// The requested device buffer size, in frames.
    audio::Published<std::int64_t> bufferSize{512};
    audio::Published<std::vector<session::Snapshot>> snapshots;
    audio::Published<std::optional<std::int64_t>> currentSnapshotIndex;
    /// Entry i is true if recalls keep what is live in slot i of every strip. Loads keep it too, except in
    /// empty slots.
    audio::Published<std::vector<bool>> pluginSlotRecallSafe{std::vector<bool>(3, false)};
    /// The index of the scene whose recalling note is being learnt; absent = none.
    audio::Published<std::optional<std::int64_t>> midiLearnTargetIndex;
    audio::Published<std::vector<midi::MIDIDeviceInfo>> availableMIDIDevices;
    /// The one source that notes are taken from; absent = all sources.
    audio::Published<std::optional<std::int32_t>> selectedMIDIDeviceID;
};

} // namespace orvane::engine
