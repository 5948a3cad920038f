#include "audio/buffer_size.h"

#include <fmt/format.h>

#include <utility>

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

BufferSizeAgreement
negotiateBufferSize(AudioHardware& hardware, AudioObjectID device, std::uint32_t requested) {
    const OSStatus status = hardware.AudioObjectSetPropertyData(BufferFrameSize{device}, requested);
    const auto actual = hardware.AudioObjectGetPropertyData(BufferFrameSize{device});
    if (actual && actual.value() != requested)
        return {actual.value(), otherSizeWarning(actual.value(), requested, status)};
    if (status != noErr) return {requested, refusedSizeWarning(requested, status)};
    return {requested, std::nullopt};
}

std::unique_ptr<AudioDeviceWatch> watchBufferSize(
    AudioHardware& hardware, AudioObjectID device, std::uint32_t requested, std::uint32_t agreed,
    BufferSizeHandler handler
) {
    // Copies of the listener share it.
    const auto lastReportedBufferFrameSize = std::make_shared<std::uint32_t>(agreed);
    auto watch = hardware.AudioObjectAddPropertyListenerBlock(
        device, AudioDeviceChange::bufferSize,
        [&hardware, device, requested, lastReportedBufferFrameSize, handler = std::move(handler)] {
            const auto now = hardware.AudioObjectGetPropertyData(BufferFrameSize{device});
            if (!now || now.value() == requested || now.value() == *lastReportedBufferFrameSize) return;
            *lastReportedBufferFrameSize = now.value();
            if (handler) handler(now.value());
        }
    );
    return watch ? std::move(watch).value() : nullptr;
}

} // namespace orvane::audio
