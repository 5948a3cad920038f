#pragma once

#include "platform/base/result.h"
#include "platform/effects/audio_unit_host.h"
#include "platform/lv2/editor_description.h"
#include "platform/lv2/plugin_bundle.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvane::platform::lv2 {

enum class PortKind { audio, control, cv, atom, unknown };

/// What a port is to whoever connects it. A plain value.
struct PortRole {
    PortKind kind = PortKind::unknown;
    bool isInput = false;
    /// It may be left unconnected.
    bool isOptional = false;
    /// An audio input beside the signal that is processed.
    bool isSideChain = false;
    /// Names the group that an audio port belongs to; empty for none.
    std::string group = {};
    /// The plugin's own short name of it, unique within the plugin.
    std::string symbol = {};
};

/// The ports that carry the signal: those audio ports, but side chains, that must be connected, and those
/// that are in a group with one of them. All, of a direction where none must be connected.
struct MainAudioPorts {
    std::vector<std::uint32_t> inputs;
    std::vector<std::uint32_t> outputs;

    /// The channels of the format in which the plugin can be hosted, 1 or 2; empty if there is none. A plugin
    /// with one port on one side and two on the other is hosted in stereo.
    [[nodiscard]] std::optional<std::uint32_t> channelCount() const;
};

/// A control port that is a parameter of the unit. A plain value.
struct ControlPort {
    std::uint32_t index = 0;
    /// The range and the default are factors of the sample rate where `scalesWithSampleRate`.
    AUParameterInfo info;
    bool scalesWithSampleRate = false;
    /// Set for a moment, to make something happen; not part of the sound.
    bool isTrigger = false;
};

/// All that hosting a plugin takes to know about it. A plain value.
struct PluginDescription {
    std::string uri;
    std::string name;
    std::string bundlePath;
    std::string libraryPath;
    std::vector<std::string> requiredFeatures;
    std::vector<std::string> requiredOptions;
    /// Its state can be restored while it runs.
    bool restoresWhileRunning = false;

    /// By port index, all three.
    std::vector<PortRole> roles;
    /// How large the buffer of an atom port is at least, in bytes.
    std::vector<std::size_t> bufferSizes;
    /// What a control port that is no parameter is held at while blocks are rendered live.
    std::vector<float> heldValues;
    /// The control inputs that are 1 while blocks are rendered offline, by index.
    std::vector<std::uint32_t> freeWheelingPorts;

    MainAudioPorts audio;
    std::vector<ControlPort> controls;
    /// The control output that reports the latency in frames; absent if the plugin has none.
    std::optional<std::uint32_t> latencyPort;
    /// Nothing where the plugin brings no editor for X11 along.
    std::optional<EditorDescription> editor;
};

/// The roles of the plugin's ports by index, or why it cannot be connected, as the end of a sentence.
Result<std::vector<PortRole>> portRoles(PluginBundle& bundle, const LilvPlugin* plugin);

MainAudioPorts mainAudioPorts(const std::vector<PortRole>& roles);

/// Reads the description of a plugin of the bundle.
Result<PluginDescription> describe(PluginBundle& bundle, const LilvPlugin* plugin);

} // namespace orvane::platform::lv2
