#pragma once

#include "platform/lv2/plugin_bundle.h"
#include "platform/lv2/plugin_description.h"

#include <optional>

namespace orvane::platform::lv2 {

/// The value at which a port is held, where it is one that the host and not the user decides on.
std::optional<float> heldValue(PluginBundle& bundle, const LilvPlugin* plugin, const LilvPort* port);

/// Whether a port takes if blocks are rendered offline.
bool isFreeWheeling(PluginBundle& bundle, const LilvPlugin* plugin, const LilvPort* port);

/// Whether a plugin reports its latency, in frames, through the port.
bool reportsLatency(PluginBundle& bundle, const LilvPlugin* plugin, const LilvPort* port);

/// Reads the description of a control port. What is missing or makes no sense in it is made good, so that the
/// range is finite and the default within it.
ControlPort describeControl(PluginBundle& bundle, const LilvPlugin* plugin, const LilvPort* port);

} // namespace orvane::platform::lv2
