#pragma once

#include "platform/base/result.h"
#include "platform/base/system_log.h"
#include "platform/virtual/virtual_device.h"

#include <filesystem>
#include <vector>

namespace orvane::platform::virtual_devices {

/// How much faster than its stated rate the monitor's clock runs, in parts per million: what the crystals of
/// two interfaces are commonly apart.
inline constexpr double usualClockOffsetPpm = 30.0;

/// The devices that are always there: "virtual:panel" (8 in, 8 out) that plays the recording of a panel of
/// eight microphones over and over, "virtual:silent48" (48 in, 48 out) and "virtual:monitor" (2 out), whose
/// clock is another one than theirs.
std::vector<VirtualDevice> builtInDevices(
    const std::filesystem::path& panelRecording, SystemLog& log, double monitorOffsetPpm = usualClockOffsetPpm
);

/// A device "Virtual: NAME" whose inputs are the channels of a sound file, played over and over at the file's
/// rate, and which has as many outputs, but at least two. Its uid is "virtual:file:NAME", NAME being the
/// file's name without its folder. Fails where the file cannot be read. Main thread.
Result<VirtualDevice> fileDevice(const std::filesystem::path& recording, SystemLog& log);

} // namespace orvane::platform::virtual_devices
