#pragma once

#include "platform/lv2/plugin_bundle.h"

#include <optional>
#include <string>
#include <vector>

namespace orvane::platform::lv2 {

/// A plugin's own editor for X11. A plain value.
struct EditorDescription {
    std::string uri;
    std::string bundlePath;
    std::string libraryPath;
    std::vector<std::string> requiredFeatures;
    std::vector<std::string> requiredOptions;
    /// The user cannot resize it.
    bool hasFixedSize = false;
};

/// Reads the description of the plugin's first X11 editor; absent if it has none.
std::optional<EditorDescription> describeEditor(PluginBundle& bundle, const LilvPlugin* plugin);

} // namespace orvane::platform::lv2
