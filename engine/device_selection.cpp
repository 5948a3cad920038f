#include "engine/device_selection.h"

#include "audio/audio_device_manager.h"
#include "engine/routing_operations.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace orvane::engine {

using audio::AudioDeviceInfo;

void DeviceSelection::refresh() {
    auto devices = audio::AudioDeviceManager(services.audioHardware).allDevices();
    if (!devices) {
        state.lastError.set("Failed to enumerate audio devices: " + devices.error().description());
        return;
    }
    std::erase_if(devices.value(), [](const AudioDeviceInfo& device) {
        return device.inputChannelCount < 1 && device.outputChannelCount < 1;
    });
    state.availableDevices.set(std::move(devices).value());
    for (const AudioDeviceInfo& device : state.availableDevices.get())
        updateChosen(device);
}

void DeviceSelection::describeChosen() {
    audio::AudioDeviceManager manager(services.audioHardware);
    for (const auto* const chosen : {&state.selectedDevice, &state.masterOutputDevice})
        if (const auto& known = chosen->get())
            if (const auto device = manager.device(known->id)) updateChosen(device.value());
}

void DeviceSelection::updateChosen(const AudioDeviceInfo& device) {
    for (auto* const chosen : {&state.selectedDevice, &state.masterOutputDevice}) {
        const std::optional<AudioDeviceInfo>& known = chosen->get();
        if (known && known->id == device.id && known->uid == device.uid && *known != device)
            chosen->set(device);
    }
}

void DeviceSelection::select(const AudioDeviceInfo& device) {
    state.selectedDevice.set(device);
    mix.editStrips([&device](Mix::Strips& strips) {
        assignDefaultRouting(strips, device.inputChannelCount, device.outputChannelCount);
    });
    validateMasterOutputRouting();
}

void DeviceSelection::selectMaster(const std::optional<AudioDeviceInfo>& device) {
    state.masterOutputDevice.set(device);
    validateMasterOutputRouting();
}

bool DeviceSelection::validateMasterOutputRouting() {
    if (exists(mix.master().masterOutputRouting, masterCapacity())) return false;
    mix.editMaster([](auto& master) { master.masterOutputRouting = session::output::None{}; });
    return true;
}

std::int64_t DeviceSelection::masterCapacity() const {
    if (const auto& master = state.masterOutputDevice.get()) return master->outputChannelCount;
    if (const auto& main = state.selectedDevice.get()) return main->outputChannelCount;
    return 0;
}

double DeviceSelection::bufferLatencyMs() const {
    const std::optional<AudioDeviceInfo>& device = state.selectedDevice.get();
    if (!device || !(device->sampleRate > 0.0)) return 0.0;
    return static_cast<double>(state.bufferSize.get()) / device->sampleRate * 1000.0;
}

std::int64_t DeviceSelection::ringBufferBytes() const {
    constexpr std::int64_t bytesPerFrame = 32; // eight blocks of four bytes
    const std::optional<AudioDeviceInfo>& device = state.selectedDevice.get();
    if (!device) return 0;
    return std::max<std::int64_t>(device->outputChannelCount, 0) * state.bufferSize.get() * bytesPerFrame;
}

} // namespace orvane::engine
