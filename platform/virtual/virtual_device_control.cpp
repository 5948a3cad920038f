#include "platform/virtual/virtual_device_control.h"

namespace orvane::platform::virtual_devices {

void VirtualDeviceControl::die() {
    if (!device.isAlive.exchange(false)) return;
    ++device.deaths;
    notifier.announce(device.device.description.uid, AudioDeviceChange::died);
}

void VirtualDeviceControl::reappear() {
    device.isAlive = true;
}

void VirtualDeviceControl::changeBufferSize(std::uint32_t frameCount) {
    device.cycleLength = frameCount;
    if (device.bufferSize.exchange(frameCount) == frameCount) return;
    notifier.announce(device.device.description.uid, AudioDeviceChange::bufferSize);
}

} // namespace orvane::platform::virtual_devices
