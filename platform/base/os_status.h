#pragma once

#include <cstdint>

namespace orvane::platform {

/// The result of a platform call; 0 is success.
using OSStatus = std::int32_t;
inline constexpr OSStatus noErr = 0;

/// A code written as four characters, the first one in the highest byte.
constexpr std::uint32_t fourCharCode(const char (&characters)[5]) noexcept {
    std::uint32_t code = 0;
    for (int i = 0; i < 4; ++i)
        code = code << 8 | static_cast<unsigned char>(characters[i]);
    return code;
}

/// A status written as four characters.
constexpr OSStatus fourCharStatus(const char (&characters)[5]) noexcept {
    return static_cast<OSStatus>(fourCharCode(characters));
}

// Failures of calls on audio devices.
inline constexpr OSStatus kAudioHardwareUnspecifiedError = fourCharStatus("what");
inline constexpr OSStatus kAudioHardwareIllegalOperationError = fourCharStatus("nope");
inline constexpr OSStatus kAudioHardwareBadObjectError = fourCharStatus("!obj");
inline constexpr OSStatus kAudioHardwareBadDeviceError = fourCharStatus("!dev");
inline constexpr OSStatus kAudioDeviceUnsupportedFormatError = fourCharStatus("!dat");
/// Another program has the device for itself.
inline constexpr OSStatus kAudioDevicePermissionsError = fourCharStatus("!hog");

// Failures of calls on audio units.
/// A callback did not return in time; the unit must never be disposed of.
inline constexpr OSStatus kAudioUnitErr_CallbackAbandoned = fourCharStatus("hung");
inline constexpr OSStatus kAudioUnitErr_InvalidParameter = -10878;
inline constexpr OSStatus kAudioUnitErr_InvalidElement = -10877;
inline constexpr OSStatus kAudioUnitErr_NoConnection = -10876;
inline constexpr OSStatus kAudioUnitErr_TooManyFramesToProcess = -10874;
inline constexpr OSStatus kAudioUnitErr_FormatNotSupported = -10868;
inline constexpr OSStatus kAudioUnitErr_Uninitialized = -10867;
inline constexpr OSStatus kAudioUnitErr_CannotDoInCurrentContext = -10863;
inline constexpr OSStatus kAudioUnitErr_Initialized = -10849;
/// An invalid argument, such as a unit that does not exist.
inline constexpr OSStatus kAudio_ParamError = -50;

} // namespace orvane::platform
