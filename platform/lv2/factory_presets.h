#pragma once

#include "platform/files/property_list.h"
#include "platform/lv2/component_scan.h"
#include "platform/lv2/plugin_bundle.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace orvane::platform::lv2 {

// Both read descriptions with libraries that may crash or hang on hostile data: only for a process that may.

/// Returns the presets that a bundle declares, one for each plugin that a preset is for, in no order. Those
/// without a name are left out.
std::vector<InstalledPreset> presetsIn(PluginBundle& bundle, const std::filesystem::path& folder);

/// Returns the full state of a plugin that a preset of the bundle stands for, without the controls and values
/// that the preset does not mention; absent if the bundle does not declare the preset.
std::optional<PropertyList::Dictionary>
readPreset(const std::filesystem::path& folder, const std::string& presetUri, const std::string& pluginUri);

} // namespace orvane::platform::lv2
