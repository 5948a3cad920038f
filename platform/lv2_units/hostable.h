#pragma once

#include "platform/lv2_units/plugin_description.h"
#include "platform/result.h"

#include <optional>

namespace orvane::platform::lv2_units {

/// Why a plugin cannot be instantiated, by its description alone; empty if it can.
std::optional<Error> whyNotInstantiable(const PluginDescription& description);

/// Whether a plugin can be instantiated and fits a format, by its description alone.
bool isHostable(const PluginDescription& description);

} // namespace orvane::platform::lv2_units
