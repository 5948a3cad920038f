#include "audio/buffer_size_negotiation.h"

#include "platform/audio_hardware/property_bytes.h"

#include <fmt/format.h>

namespace orvane::audio {

using namespace platform;

namespace {

std::string otherSizeWarning(std::uint32_t actual, std::uint32_t requested, OSStatus status) {
    return fmt::format(
        "This device is actually running a {0}-frame buffer, not the {1} frames this app requested "
        "(buffer-size request itself returned OSStatus {2}) -- some virtual-audio drivers (e.g. VB-Cable) "
        "accept a buffer-size request without honoring it. This app has adjusted its own AudioUnit to the "
        "device's real {0}-frame size so audio keeps working, but you'll likely still see extra CPU load and "
        "dropped-cycle glitches (Console: \"HALC_ProxyIOContext ... out of order message\") until the "
        "device's own buffer size (check its control panel/driver settings) is changed to match what this "
        "app requests.",
        actual, requested, status
    );
}

std::string refusedSizeWarning(std::uint32_t requested, OSStatus status) {
    return fmt::format(
        "This device didn't accept a {}-frame buffer size (OSStatus {}) -- it may be pinned to a different "
        "size by another app also using it, or only support a fixed size. Audio will still run, but you may "
        "see dropped-cycle glitches (Console: \"HALC_ProxyIOContext ... out of order message\" or "
        "\"kAudioUnitErr_TooManyFramesToProcess\") if the device's actual buffer size doesn't match what "
        "this app expects.",
        requested, status
    );
}

} // namespace

std::optional<std::uint32_t> readBufferSize(AudioHardware& hardware, AudioObjectID device) {
    std::uint32_t frameCount = 0;
    const PropertySize read =
        hardware.AudioObjectGetPropertyData(device, bufferSizeAddress, platform::writableBytesOf(frameCount));
    return read.status == noErr ? std::optional(frameCount) : std::nullopt;
}

BufferSizeAgreement
negotiateBufferSize(AudioHardware& hardware, AudioObjectID device, std::uint32_t requested) {
    const OSStatus status =
        hardware.AudioObjectSetPropertyData(device, bufferSizeAddress, platform::bytesOf(requested));
    const std::uint32_t actual = readBufferSize(hardware, device).value_or(requested);
    if (actual != requested) return {actual, otherSizeWarning(actual, requested, status)};
    if (status != noErr) return {requested, refusedSizeWarning(requested, status)};
    return {requested, std::nullopt};
}

} // namespace orvane::audio
