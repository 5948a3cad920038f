#pragma once

#include "platform/base/result.h"
#include "platform/lv2/plugin_description.h"

#include <optional>

namespace orvane::platform::lv2 {

/// Why a plugin cannot be instantiated, judged by its description; absent if it can.
std::optional<Error> whyNotInstantiable(const PluginDescription& description);

/// Whether a plugin can be instantiated and supports a format, judged by its description.
bool isHostable(const PluginDescription& description);

} // namespace orvane::platform::lv2
