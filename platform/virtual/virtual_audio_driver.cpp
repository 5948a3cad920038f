#include "platform/virtual/virtual_audio_driver.h"

#include "platform/virtual/live_stream.h"
#include "platform/virtual/stepped_stream.h"

#include <algorithm>
#include <utility>

namespace orvane::platform::virtual_devices {

namespace {

std::vector<std::unique_ptr<VirtualDeviceState>> statesOf(std::vector<VirtualDevice> devices) {
    std::vector<std::unique_ptr<VirtualDeviceState>> states;
    states.reserve(devices.size());
    for (VirtualDevice& device : devices)
        states.push_back(std::make_unique<VirtualDeviceState>(std::move(device)));
    return states;
}

Result<std::uint32_t, OSStatus> grantEverySize(std::uint32_t requested) {
    if (requested < shortestVirtualBuffer || requested > longestVirtualBuffer)
        return kAudioHardwareIllegalOperationError;
    return requested;
}

} // namespace

VirtualAudioDriver::VirtualAudioDriver(
    std::vector<VirtualDevice> describedDevices, VirtualPacing streamPacing, SystemLog& systemLog
)
    : pacing(streamPacing), log(systemLog), states(statesOf(std::move(describedDevices))), stepper(states) {}

std::vector<AudioDriverDevice> VirtualAudioDriver::devices() {
    std::vector<AudioDriverDevice> listed;
    for (const auto& state : states)
        if (state->isAlive) listed.push_back(state->device.description);
    return listed;
}

Result<std::uint32_t, OSStatus> VirtualAudioDriver::bufferSize(std::string_view uid) {
    const VirtualDeviceState* const device = findAlive(uid);
    if (device == nullptr) return kAudioHardwareBadDeviceError;
    return device->bufferSize.load();
}

OSStatus VirtualAudioDriver::requestBufferSize(std::string_view uid, std::uint32_t frameCount) {
    VirtualDeviceState* const device = findAlive(uid);
    if (device == nullptr) return kAudioHardwareBadDeviceError;
    const auto& answer = device->device.answerBufferSize;
    const auto granted = answer ? answer(frameCount) : grantEverySize(frameCount);
    if (!granted) return granted.error();
    VirtualDeviceControl(*device, notifier).changeBufferSize(granted.value());
    return noErr;
}

Result<std::unique_ptr<AudioStream>, OSStatus>
VirtualAudioDriver::open(std::string_view uid, bool enableInput, AudioStreamClient& client) {
    VirtualDeviceState* const device = findAlive(uid);
    if (device == nullptr) return kAudioHardwareBadDeviceError;
    if (device->isOccupied || device->isOpen) return kAudioDevicePermissionsError;
    if (pacing == VirtualPacing::stepped)
        return std::unique_ptr<AudioStream>(std::make_unique<SteppedStream>(*device, enableInput, client, log)
        );
    return std::unique_ptr<AudioStream>(std::make_unique<LiveStream>(*device, enableInput, client, log));
}

std::unique_ptr<AudioDeviceWatch> VirtualAudioDriver::watch(std::string_view uid, Listener listener) {
    return notifier.watch(uid, std::move(listener));
}

std::optional<VirtualDeviceControl> VirtualAudioDriver::control(std::string_view uid) {
    VirtualDeviceState* const device = find(uid);
    if (device == nullptr) return std::nullopt;
    return VirtualDeviceControl(*device, notifier);
}

VirtualDeviceState* VirtualAudioDriver::find(std::string_view uid) const {
    const auto found = std::ranges::find_if(states, [uid](const auto& state) {
        return state->device.description.uid == uid;
    });
    return found == states.end() ? nullptr : found->get();
}

VirtualDeviceState* VirtualAudioDriver::findAlive(std::string_view uid) const {
    VirtualDeviceState* const device = find(uid);
    return device != nullptr && device->isAlive ? device : nullptr;
}

} // namespace orvane::platform::virtual_devices
