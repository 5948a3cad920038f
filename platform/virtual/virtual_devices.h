#pragma once

#include "platform/base/result.h"
#include "platform/base/system_log.h"
#include "platform/virtual/virtual_device.h"

#include <filesystem>
#include <vector>

namespace orvane::platform::virtual_devices {

/// How much faster the monitor's clock runs than its nominal rate, in parts per million: the usual difference
/// between the crystals of two interfaces.
inline constexpr double usualClockOffsetPpm = 30.0;

/// The built-in devices: "virtual:panel" (8 in, 8 out), which loops the recording of a panel of eight
/// microphones, "virtual:silent48" (48 in, 48 out) and "virtual:monitor" (2 out), which has a different
/// clock.
std::vector<VirtualDevice> builtInDevices(
    const std::filesystem::path& panelRecording, SystemLog& log, double monitorOffsetPpm = usualClockOffsetPpm
);

/// A device "Virtual: NAME" whose inputs loop the channels of a sound file at the file's rate, with as many
/// outputs, but at least two. Its uid is "virtual:file:NAME"; NAME is the file's name without its folder.
/// Fails if the file cannot be read. Main thread.
Result<VirtualDevice> fileDevice(const std::filesystem::path& recording, SystemLog& log);

} // namespace orvane::platform::virtual_devices
