#include "ui/windows/launch_options.h"

#include "audio/find_device.h"
#include "ui/windows/channel_count_picker_view.h"

#include <algorithm>

namespace orvane::ui {

std::optional<std::int64_t> channelCountFor(const LaunchOptions& options) {
    if (options.channels) return options.channels;
    if (!options.session) return std::nullopt;
    const auto held = static_cast<std::int64_t>(options.session->channels.size());
    const auto size = std::ranges::lower_bound(offeredChannelCounts, held);
    return size == std::end(offeredChannelCounts) ? offeredChannelCounts[std::size(offeredChannelCounts) - 1]
                                                  : *size;
}

std::vector<std::string>
selectDevices(engine::MixerEngine& mixer, platform::AudioHardware& hardware, const LaunchOptions& options) {
    std::vector<std::string> problems;
    mixer.refreshDevices();
    const auto find = [&](const std::optional<std::string>& uid) -> std::optional<audio::AudioDeviceInfo> {
        auto found = audio::findDevice(hardware, mixer.state().availableDevices.get(), uid);
        auto problem =
            found ? audio::rateProblem(found.value(), options.sampleRate) : found.error().description;
        if (!problem) return std::move(found).value();
        problems.push_back(*std::move(problem));
        return std::nullopt;
    };
    if (options.device || options.start)
        if (const auto device = find(options.device)) mixer.selectDevice(*device);
    if (options.masterDevice)
        if (const auto device = find(options.masterDevice)) mixer.selectMasterOutputDevice(*device);
    return problems;
}

void launch(engine::MixerEngine& mixer, const LaunchOptions& options) {
    if (options.bufferSize) mixer.setBufferSize(*options.bufferSize);
    if (options.start && mixer.state().selectedDevice.get()) mixer.start();
}

} // namespace orvane::ui
