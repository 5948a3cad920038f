#pragma once

#include "platform/files/property_list.h"
#include "platform/lv2/component_scan.h"
#include "platform/lv2/plugin_bundle.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace orvane::platform::lv2 {

// Both parse descriptions with libraries that may crash or hang on hostile data: call them only in a process
// that may.

/// Returns the presets that a bundle declares, one for each plugin of a preset, unsorted. Presets without a
/// name are left out.
std::vector<InstalledPreset> presetsIn(PluginBundle& bundle, const std::filesystem::path& folder);

/// Returns the full state for a preset of the bundle, with only the controls and values that the preset sets;
/// absent if the bundle does not declare the preset.
std::optional<PropertyList::Dictionary>
readPreset(const std::filesystem::path& folder, const std::string& presetUri, const std::string& pluginUri);

} // namespace orvane::platform::lv2
