#pragma once

#include <string_view>

namespace orvane::platform::lv2 {

/// What the log files the lines of LV2 plugins, and about them, under.
inline constexpr std::string_view logCategory = "LV2";

} // namespace orvane::platform::lv2
