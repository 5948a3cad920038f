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

/// What a port is for. A plain value.
struct PortRole {
    PortKind kind = PortKind::unknown;
    bool isInput = false;
    /// Whether it may be left unconnected.
    bool isOptional = false;
    /// An audio input beside the processed signal.
    bool isSideChain = false;
    /// The group of an audio port; empty if none.
    std::string group = {};
    /// A short name, unique within the plugin.
    std::string symbol = {};
};

/// The ports that carry the signal: the audio ports that must be connected, except side chains, and those in
/// a group with one of them. If none must be connected in a direction: all of them.
struct MainAudioPorts {
    std::vector<std::uint32_t> inputs;
    std::vector<std::uint32_t> outputs;

    /// The channels of the format in which the plugin can be hosted, 1 or 2; absent if there is none. A
    /// plugin with one port on one side and two on the other is hosted in stereo.
    [[nodiscard]] std::optional<std::uint32_t> channelCount() const;
};

/// A control port that is a parameter of the unit. A plain value.
struct ControlPort {
    std::uint32_t index = 0;
    /// If `scalesWithSampleRate`, range and default are multiples of the sample rate.
    AUParameterInfo info;
    bool scalesWithSampleRate = false;
    /// Set for a moment to trigger an action; not part of the plugin's settings.
    bool isTrigger = false;
};

/// The complete description that hosting a plugin needs. A plain value.
struct PluginDescription {
    std::string uri;
    std::string name;
    std::string bundlePath;
    std::string libraryPath;
    std::vector<std::string> requiredFeatures;
    std::vector<std::string> requiredOptions;
    /// Whether its state can be restored while it runs.
    bool restoresWhileRunning = false;

    /// By port index, as are the next two.
    std::vector<PortRole> roles;
    /// The minimum size of an atom port's buffer, in bytes.
    std::vector<std::size_t> bufferSizes;
    /// The value at which a control port that is not a parameter is held during live rendering.
    std::vector<float> heldValues;
    /// The indices of the control inputs that are set to 1 for offline rendering.
    std::vector<std::uint32_t> freeWheelingPorts;

    MainAudioPorts audio;
    std::vector<ControlPort> controls;
    /// The control output that reports the latency in frames; absent if there is none.
    std::optional<std::uint32_t> latencyPort;
    /// Absent if the plugin has no editor for X11.
    std::optional<EditorDescription> editor;
};

/// Returns the roles of the plugin's ports by index. Fails, with the end of a sentence, if it cannot be
/// connected.
Result<std::vector<PortRole>> portRoles(PluginBundle& bundle, const LilvPlugin* plugin);

MainAudioPorts mainAudioPorts(const std::vector<PortRole>& roles);

/// Reads the description of a plugin of the bundle.
Result<PluginDescription> describe(PluginBundle& bundle, const LilvPlugin* plugin);

} // namespace orvane::platform::lv2
