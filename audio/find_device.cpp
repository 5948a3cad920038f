#include "audio/find_device.h"

#include "audio/audio_device_manager.h"

#include <fmt/format.h>

#include <algorithm>

namespace orvane::audio {

using platform::Error;
using platform::Result;

Result<AudioDeviceInfo> findDevice(
    platform::AudioHardware& hardware, const std::vector<AudioDeviceInfo>& offered,
    const std::optional<std::string>& uid
) {
    const auto found = std::ranges::find_if(offered, [&uid](const AudioDeviceInfo& device) {
        return uid ? device.uid == *uid : device.inputChannelCount >= 1 && device.outputChannelCount >= 1;
    });
    if (found != offered.end()) return *found;
    if (!uid) return Error{"There is no audio device with inputs and outputs."};
    const auto all = AudioDeviceManager(hardware).allDevices();
    if (all && std::ranges::find(all.value(), *uid, &AudioDeviceInfo::uid) != all.value().end())
        return Error{fmt::format(
            "The audio device {} has neither inputs nor outputs now; another program may be using it.", *uid
        )};
    return Error{fmt::format("There is no audio device {}; orvane-cli devices lists those there are.", *uid)};
}

} // namespace orvane::audio
