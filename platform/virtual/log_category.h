#pragma once

#include <string_view>

namespace orvane::platform::virtual_devices {

/// What the log files the lines of virtual devices under.
inline constexpr std::string_view virtualAudioLogCategory = "VirtualAudio";

} // namespace orvane::platform::virtual_devices
