#include "cli/buffer_size_keeper.h"

#include "audio/buffer_size_negotiation.h"

namespace orvane::cli {

namespace {

/// Only JACK servers share their buffer size with other programs.
bool isShared(const audio::AudioDeviceInfo& device) {
    return device.uid.starts_with("jack:");
}

} // namespace

std::optional<std::uint32_t> BufferSizeKeeper::remember(const audio::AudioDeviceInfo& device) {
    const auto present = audio::readBufferSize(hardware, device.id);
    if (present && isShared(device)) sizes[device.id] = {*present, *present};
    return present;
}

void BufferSizeKeeper::noteChanges() {
    for (auto& [device, size] : sizes)
        size.duringRun = audio::readBufferSize(hardware, device).value_or(size.before);
}

void BufferSizeKeeper::restore() {
    for (const auto& [device, size] : sizes) {
        const bool isOurs = size.duringRun != size.before;
        if (isOurs && audio::readBufferSize(hardware, device) == size.duringRun)
            audio::negotiateBufferSize(hardware, device, size.before);
    }
    sizes.clear();
}

} // namespace orvane::cli
