#include "cli/buffer_size_keeper.h"

namespace orvane::cli {

namespace {

/// Only JACK servers share their buffer size with other programs.
bool isShared(const audio::AudioDeviceInfo& device) {
    return device.uid.starts_with("jack:");
}

} // namespace

std::optional<std::uint32_t> BufferSizeKeeper::remember(const audio::AudioDeviceInfo& device) {
    const auto present = read(device.id);
    if (present && isShared(device)) sizes[device.id] = {*present, *present};
    return present;
}

void BufferSizeKeeper::noteChanges() {
    for (auto& [device, size] : sizes)
        size.duringRun = read(device).value_or(size.before);
}

void BufferSizeKeeper::restore() {
    for (const auto& [device, size] : sizes) {
        const bool isOurs = size.duringRun != size.before;
        if (isOurs && read(device) == size.duringRun)
            hardware.AudioObjectSetPropertyData(platform::BufferFrameSize{device}, size.before);
    }
    sizes.clear();
}

std::optional<std::uint32_t> BufferSizeKeeper::read(platform::AudioObjectID device) {
    const auto size = hardware.AudioObjectGetPropertyData(platform::BufferFrameSize{device});
    return size ? std::optional(size.value()) : std::nullopt;
}

} // namespace orvane::cli
