#pragma once

#include "platform/audio_hardware/audio_driver.h"

#include <cerrno>

namespace orvane::platform::alsa {

/// A failure as alsa-lib reports it: a negative errno value; 0 is success. We use two of our own: `-ENOTSUP`
/// if a device has no format in common with us, `-ETIMEDOUT` if it has stopped delivering.
using ErrorNumber = int;

/// Another program has the device.
constexpr bool isBusy(ErrorNumber error) noexcept {
    return error == -EBUSY || error == -EAGAIN;
}

/// The result of opening a direction that the device does not have.
constexpr bool isAbsent(ErrorNumber error) noexcept {
    return error == -ENOENT || error == -ENODEV || error == -ENXIO || error == -EINVAL;
}

/// The driver's status for a failure. Any thread.
constexpr OSStatus statusOf(ErrorNumber error) noexcept {
    if (error == 0) return noErr;
    if (isBusy(error) || error == -EACCES || error == -EPERM) return kAudioDevicePermissionsError;
    if (isAbsent(error)) return kAudioHardwareBadDeviceError;
    if (error == -ENOTSUP) return kAudioDeviceUnsupportedFormatError;
    return kAudioHardwareUnspecifiedError;
}

} // namespace orvane::platform::alsa
