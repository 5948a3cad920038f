#pragma once

#include "platform/lv2/plugin_bundle.h"

#include <optional>
#include <string>
#include <vector>

namespace orvane::platform::lv2 {

/// The editor for X11 that a plugin brings along. A plain value.
struct EditorDescription {
    std::string uri;
    std::string bundlePath;
    std::string libraryPath;
    std::vector<std::string> requiredFeatures;
    std::vector<std::string> requiredOptions;
    /// The user cannot choose its size.
    bool hasFixedSize = false;
};

/// Reads the description of the first such editor; nothing where the plugin has none.
std::optional<EditorDescription> describeEditor(PluginBundle& bundle, const LilvPlugin* plugin);

} // namespace orvane::platform::lv2
