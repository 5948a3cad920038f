#pragma once

#include "platform/base/result.h"
#include "platform/lv2/plugin_description.h"

#include <optional>

namespace orvane::platform::lv2 {

/// Why a plugin cannot be instantiated, by its description alone; empty if it can.
std::optional<Error> whyNotInstantiable(const PluginDescription& description);

/// Whether a plugin can be instantiated and fits a format, by its description alone.
bool isHostable(const PluginDescription& description);

} // namespace orvane::platform::lv2
