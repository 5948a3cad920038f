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

std::optional<std::string>
rateProblem(const AudioDeviceInfo& device, const std::optional<unsigned>& wantedRate) {
    if (!wantedRate || device.sampleRate == *wantedRate) return std::nullopt;
    return fmt::format(
        "The audio device {} runs at {:.0f} Hz and not at {} Hz; name a rate that it has (--rate), or leave "
        "the "
        "rate out.",
        device.uid, device.sampleRate, *wantedRate
    );
}

} // namespace orvane::audio
