#pragma once

#include "audio/audio_device_info.h"
#include "platform/audio_hardware/audio_hardware.h"
#include "platform/base/result.h"

#include <optional>
#include <string>
#include <vector>

namespace orvane::audio {

/// The device that a command line asks for: of `uid`, or the first with inputs and outputs if absent, among
/// those on offer. `hardware` tells why a device that is there is not on offer. Main thread.
platform::Result<AudioDeviceInfo> findDevice(
    platform::AudioHardware& hardware, const std::vector<AudioDeviceInfo>& offered,
    const std::optional<std::string>& uid
);

/// Why a device cannot run at the rate that was asked for, in Hz, as one sentence; nothing if it can or no
/// rate was asked for.
std::optional<std::string>
rateProblem(const AudioDeviceInfo& device, const std::optional<unsigned>& wantedRate);

} // namespace orvane::audio
