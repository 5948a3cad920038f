#pragma once

#include "platform/lv2/plugin_bundle.h"
#include "platform/lv2/plugin_description.h"

#include <optional>

namespace orvane::platform::lv2 {

/// The value at which the host holds a port; absent if the port is the user's to set.
std::optional<float> heldValue(PluginBundle& bundle, const LilvPlugin* plugin, const LilvPort* port);

/// Whether the port switches the plugin to offline rendering.
bool isFreeWheeling(PluginBundle& bundle, const LilvPlugin* plugin, const LilvPort* port);

/// Whether the plugin reports its latency, in frames, through the port.
bool reportsLatency(PluginBundle& bundle, const LilvPlugin* plugin, const LilvPort* port);

/// Reads the description of a control port. Missing or invalid values are corrected: the range is finite and
/// contains the default.
ControlPort describeControl(PluginBundle& bundle, const LilvPlugin* plugin, const LilvPort* port);

} // namespace orvane::platform::lv2
