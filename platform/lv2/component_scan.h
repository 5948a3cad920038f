#pragma once

#include "platform/effects/audio_unit_host.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane::platform::lv2 {

/// An effect that a bundle declares. A plain value.
struct InstalledPlugin {
    AVAudioUnitComponent component;
    std::string uri;
    std::filesystem::path bundle;
    /// Minor and micro version; the URI stands for the major version.
    std::pair<int, int> version;

    bool operator==(const InstalledPlugin&) const = default;
};

/// A preset that a bundle declares; its plugin may be in another bundle. A plain value.
struct InstalledPreset {
    std::string uri;
    std::string name;
    /// The URI of the bank that the preset belongs to; empty if none.
    std::string bank;
    std::string pluginUri;
    std::filesystem::path bundle;

    bool operator==(const InstalledPreset&) const = default;
};

/// What a bundle declares. A plain value.
struct BundleContents {
    std::vector<InstalledPlugin> effects;
    std::vector<InstalledPreset> presets = {};
    /// One sentence for each plugin, or for the bundle, that cannot be used.
    std::vector<std::string> leftOut;

    bool operator==(const BundleContents&) const = default;
};

/// Finds the presets and the effects of one bundle. Effects have one or two audio inputs and outputs, require
/// only features that the host supports, and their library exists. Reads descriptions only. The libraries
/// that parse them may crash or hang on hostile data: call it only in a process that may. Any thread.
BundleContents readBundle(const std::filesystem::path& folder);

/// The log line for a bundle or plugin that is left out.
std::string leftOutSentence(std::string_view what, std::string_view why);

/// The description by which sessions identify an effect.
AudioComponentDescription effectDescription(std::string_view uri, std::string_view maker);

/// The 32-bit FNV-1a hash by which sessions identify plugins and makers.
std::uint32_t stableCode(std::string_view text);

} // namespace orvane::platform::lv2
