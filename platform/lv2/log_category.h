#pragma once

#include <string_view>

namespace orvane::platform::lv2 {

/// The log category for LV2 plugins.
inline constexpr std::string_view logCategory = "LV2";

} // namespace orvane::platform::lv2
