#include "platform/virtual/stepped_stream.h"

#include <mutex>

namespace orvane::platform::virtual_devices {

using std::chrono::nanoseconds;

SteppedStream::SteppedStream(
    VirtualDeviceState& openedDevice, bool enableInput, AudioStreamClient& streamClient, SystemLog& systemLog
)
    : device(openedDevice),
      cycles(openedDevice, enableInput, streamClient, systemLog),
      schedule(openedDevice.clockRate(), nanoseconds::zero()) {}

SteppedStream::~SteppedStream() {
    stop();
}

OSStatus SteppedStream::start() {
    if (!cycles.isDeviceAlive()) return kAudioHardwareBadDeviceError;
    if (isRunning) return noErr;
    if (const OSStatus status = cycles.begin(VirtualPacing::stepped); status != noErr) return status;
    isRunning = true;
    schedule.restart(nanoseconds::zero());
    startTime.reset();
    const std::scoped_lock lock(device.stepping);
    device.steppedStream = this;
    return noErr;
}

bool SteppedStream::stop() {
    if (!isRunning) return true;
    {
        const std::scoped_lock lock(device.stepping);
        device.steppedStream = nullptr;
    }
    cycles.end();
    isRunning = false;
    return true;
}

std::optional<nanoseconds> SteppedStream::due(nanoseconds now) noexcept {
    if (!cycles.isDeviceAlive()) return std::nullopt;
    if (!startTime) startTime = now;
    return *startTime + schedule.due();
}

bool SteppedStream::step() noexcept {
    if (!cycles.isDeviceAlive()) return false;
    const std::size_t frameCount = cycles.nextLength();
    schedule.advance(frameCount);
    return cycles.run(frameCount);
}

} // namespace orvane::platform::virtual_devices
