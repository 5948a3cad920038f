#pragma once

#include "audio/audio_device_info.h"
#include "platform/audio_hardware/audio_hardware.h"
#include "platform/base/result.h"

#include <optional>
#include <string>
#include <vector>

namespace orvane::audio {

/// The device that a command line asks for among those `offered`: the one of `uid`, or the first with inputs
/// and outputs if absent. The error says if `hardware` lists the device although it is not offered. Main
/// thread.
platform::Result<AudioDeviceInfo> findDevice(
    platform::AudioHardware& hardware, const std::vector<AudioDeviceInfo>& offered,
    const std::optional<std::string>& uid
);

/// Why a device cannot run at `wantedRate`, in Hz, as one sentence; absent if it can or no rate is wanted.
std::optional<std::string>
rateProblem(const AudioDeviceInfo& device, const std::optional<unsigned>& wantedRate);

} // namespace orvane::audio
