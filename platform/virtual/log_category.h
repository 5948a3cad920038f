#pragma once

#include <string_view>

namespace orvane::platform::virtual_devices {

/// The log category for virtual devices.
inline constexpr std::string_view virtualAudioLogCategory = "VirtualAudio";

} // namespace orvane::platform::virtual_devices
