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
    /// The minor and the micro version, the major being the URI.
    std::pair<int, int> version;

    bool operator==(const InstalledPlugin&) const = default;
};

/// A setting of a plugin that a bundle declares, whatever bundle the plugin is in. A plain value.
struct InstalledPreset {
    std::string uri;
    std::string name;
    /// Names the presets that it belongs with; empty for none.
    std::string bank;
    std::string pluginUri;
    std::filesystem::path bundle;

    bool operator==(const InstalledPreset&) const = default;
};

/// What a bundle declares. A plain value.
struct BundleContents {
    std::vector<InstalledPlugin> effects;
    std::vector<InstalledPreset> presets = {};
    /// A sentence for each plugin, or for the bundle, that cannot be used.
    std::vector<std::string> leftOut;

    bool operator==(const BundleContents&) const = default;
};

/// Finds the presets and the effects of one bundle: plugins with one or two audio inputs and outputs that
/// need nothing the host lacks and whose library is there. Reads descriptions only. The libraries that do so
/// may crash or hang on hostile data: only for a process that may. Any thread.
BundleContents readBundle(const std::filesystem::path& folder);

/// The sentence for a bundle or plugin that is left out.
std::string leftOutSentence(std::string_view what, std::string_view why);

/// What sessions name an effect by.
AudioComponentDescription effectDescription(std::string_view uri, std::string_view maker);

/// The 32-bit FNV-1a hash by which sessions name plugins and makers.
std::uint32_t stableCode(std::string_view text);

} // namespace orvane::platform::lv2
