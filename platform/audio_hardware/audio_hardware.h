#pragma once

#include "dsp/realtime.h"
#include "platform/base/audio_component_description.h"
#include "platform/base/audio_unit_rendering.h"
#include "platform/base/os_status.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>

namespace orvane::platform {

/// An object of the hardware layer: the system or a device. Handed out once per device uid for the life of
/// the process, so that a device that comes back has the id it had.
using AudioObjectID = std::uint32_t;
inline constexpr AudioObjectID kAudioObjectSystemObject = 1;

/// Names one property of an object.
struct AudioObjectPropertyAddress {
    std::uint32_t mSelector = 0;
    std::uint32_t mScope = 0;
    std::uint32_t mElement = 0;

    bool operator==(const AudioObjectPropertyAddress&) const = default;
};

inline constexpr std::uint32_t kAudioObjectPropertyScopeGlobal = fourCharCode("glob");
inline constexpr std::uint32_t kAudioObjectPropertyScopeInput = fourCharCode("inpt");
inline constexpr std::uint32_t kAudioObjectPropertyScopeOutput = fourCharCode("outp");

/// Of the system object: the devices, an AudioObjectID each.
inline constexpr std::uint32_t kAudioHardwarePropertyDevices = fourCharCode("dev#");
/// Of a device: a StringRef.
inline constexpr std::uint32_t kAudioDevicePropertyDeviceUID = fourCharCode("uid ");
/// Of a device: a StringRef.
inline constexpr std::uint32_t kAudioObjectPropertyName = fourCharCode("lnam");
/// Of a device, per scope: a StreamConfiguration; size 0 where the device has no such stream. To be listened
/// to: told when channels of a stream that is open are gone.
inline constexpr std::uint32_t kAudioDevicePropertyStreamConfiguration = fourCharCode("slay");
/// Of a device: a double, in Hz; to be listened to.
inline constexpr std::uint32_t kAudioDevicePropertyNominalSampleRate = fourCharCode("nsrt");
/// Of a device: an unsigned 32-bit number of frames; to be set and listened to.
inline constexpr std::uint32_t kAudioDevicePropertyBufferFrameSize = fourCharCode("fsiz");
/// Of a device: an unsigned 32-bit 1, or 0 once it is gone; to be listened to. Reading it has the device, and
/// no other, described anew for the properties that are read next.
inline constexpr std::uint32_t kAudioDevicePropertyDeviceIsAlive = fourCharCode("livn");

/// The value of a string property: lives as long as the hardware layer that gave it.
using StringRef = const std::string*;

/// The start of the value of kAudioDevicePropertyStreamConfiguration; mNumberBuffers records of AudioBuffer
/// follow it, one per stream, with the stream's channels in mNumberChannels.
struct StreamConfigurationHeader {
    std::uint32_t mNumberBuffers = 0;
    std::uint32_t mReserved = 0;
};

/// What a query for a property gives: a status, and the bytes of the value.
struct PropertySize {
    OSStatus status = noErr;
    std::uint32_t size = 0;
};

/// Called with the addresses that changed, on the hardware layer's notification thread.
using AudioObjectPropertyListenerBlock = std::function<void(std::span<const AudioObjectPropertyAddress>)>;

/// Names a registered listener; 0 is none.
using AudioObjectPropertyListenerID = std::uint64_t;

/// A component that instances can be made of; 0 is none.
using AudioComponent = std::uint32_t;

/// An instance of the hardware output unit; null is none. Given back with AudioComponentInstanceDispose.
class AudioUnitInstance;
using AudioUnit = AudioUnitInstance*;

// Properties, scopes and elements of the output unit. Element 1 is the device's input, element 0 its output.
inline constexpr std::uint32_t kAudioUnitScope_Global = 0;
inline constexpr std::uint32_t kAudioUnitScope_Input = 1;
inline constexpr std::uint32_t kAudioUnitScope_Output = 2;
/// AudioStreamBasicDescription.
inline constexpr std::uint32_t kAudioUnitProperty_StreamFormat = 8;
/// Unsigned 32-bit.
inline constexpr std::uint32_t kAudioUnitProperty_MaximumFramesPerSlice = 14;
/// AURenderCallbackStruct.
inline constexpr std::uint32_t kAudioUnitProperty_SetRenderCallback = 23;
/// AudioObjectID.
inline constexpr std::uint32_t kAudioOutputUnitProperty_CurrentDevice = 2000;
/// Unsigned 32-bit, 1 or 0.
inline constexpr std::uint32_t kAudioOutputUnitProperty_EnableIO = 2003;
/// AURenderCallbackStruct.
inline constexpr std::uint32_t kAudioOutputUnitProperty_SetInputCallback = 2005;
/// Unsigned 32-bit, read only: cycles that came late or lost samples since the last start.
inline constexpr std::uint32_t kAudioOutputUnitProperty_XRunCount = fourCharCode("xrun");
/// Signed 32-bit, read only: the real-time priority of the I/O thread, 0 if it has none.
inline constexpr std::uint32_t kAudioOutputUnitProperty_RealtimePriority = fourCharCode("rtpr");
/// StringRef, read only: why the unit could not be initialised or started last, as one sentence for people;
/// empty if only the status says. Lives as long as the unit.
inline constexpr std::uint32_t kAudioOutputUnitProperty_FailureReason = fourCharCode("why?");

inline constexpr std::uint32_t kAudioFormatLinearPCM = fourCharCode("lpcm");
/// Float, packed, not interleaved.
inline constexpr std::uint32_t nonInterleavedFloatFlags = 0x29;

struct AudioStreamBasicDescription {
    double mSampleRate = 0.0;
    std::uint32_t mFormatID = 0;
    std::uint32_t mFormatFlags = 0;
    std::uint32_t mBytesPerPacket = 0;
    std::uint32_t mFramesPerPacket = 0;
    std::uint32_t mBytesPerFrame = 0;
    std::uint32_t mChannelsPerFrame = 0;
    std::uint32_t mBitsPerChannel = 0;
    std::uint32_t mReserved = 0;

    bool operator==(const AudioStreamBasicDescription&) const = default;
};

/// A callback of the output unit: its context, action flags, time stamp, bus, frame count, and the buffers to
/// fill (none for the input callback). I/O thread, real-time safe.
using AURenderCallback = OSStatus (*)(
    void* context, AudioUnitRenderActionFlags& flags, const AudioTimeStamp& time, std::uint32_t bus,
    std::uint32_t frameCount, AudioBufferList* buffers
) noexcept;

struct AURenderCallbackStruct {
    AURenderCallback inputProc = nullptr;
    void* inputProcRefCon = nullptr;
};

/// The audio hardware of the machine: objects with properties and listeners, and the unit that captures from
/// and plays to a device. Main thread but where said otherwise; values are passed as their bytes, of exactly
/// their size. Outlives every unit and listener.
class AudioHardware {
  public:
    virtual ~AudioHardware() = default;

    /// The size of a property's value.
    virtual PropertySize
    AudioObjectGetPropertyDataSize(AudioObjectID object, const AudioObjectPropertyAddress& address) = 0;

    /// Copies a property's value into `data`, which has room for it, or of the devices as many as fit; gives
    /// the bytes copied. Any thread for the buffer size.
    virtual PropertySize AudioObjectGetPropertyData(
        AudioObjectID object, const AudioObjectPropertyAddress& address, std::span<std::byte> data
    ) = 0;

    virtual OSStatus AudioObjectSetPropertyData(
        AudioObjectID object, const AudioObjectPropertyAddress& address, std::span<const std::byte> data
    ) = 0;

    /// A registered listener, or why there is none.
    struct ListenerRegistration {
        OSStatus status = noErr;
        AudioObjectPropertyListenerID listener = 0;
    };
    virtual ListenerRegistration AudioObjectAddPropertyListenerBlock(
        AudioObjectID object, const AudioObjectPropertyAddress& address,
        AudioObjectPropertyListenerBlock block
    ) = 0;

    /// Waits for a call of the listener that is under way; none comes after. Not to be called from a
    /// listener.
    virtual OSStatus AudioObjectRemovePropertyListenerBlock(AudioObjectPropertyListenerID listener) = 0;

    virtual AudioComponent AudioComponentFindNext(const AudioComponentDescription& description) = 0;

    /// An instance, or why there is none.
    struct NewInstance {
        OSStatus status = noErr;
        AudioUnit unit = nullptr;
    };
    virtual NewInstance AudioComponentInstanceNew(AudioComponent component) = 0;
    virtual OSStatus AudioComponentInstanceDispose(AudioUnit unit) = 0;

    /// Properties are set before the unit is initialised.
    virtual OSStatus AudioUnitSetProperty(
        AudioUnit unit, std::uint32_t property, std::uint32_t scope, std::uint32_t element,
        std::span<const std::byte> data
    ) = 0;
    virtual PropertySize AudioUnitGetProperty(
        AudioUnit unit, std::uint32_t property, std::uint32_t scope, std::uint32_t element,
        std::span<std::byte> data
    ) = 0;

    /// Opens the device as the properties say.
    virtual OSStatus AudioUnitInitialize(AudioUnit unit) = 0;
    virtual OSStatus AudioUnitUninitialize(AudioUnit unit) = 0;
    virtual OSStatus AudioOutputUnitStart(AudioUnit unit) = 0;
    /// No callback runs when it returns and none comes after. Fails with kAudioUnitErr_CallbackAbandoned if
    /// one did not return within `stopPatience`: what the callbacks use must never be freed then, and the
    /// unit, which the layer keeps for ever, must not be used any more.
    virtual OSStatus AudioOutputUnitStop(AudioUnit unit) = 0;

    /// Copies what the device captured in this cycle into `buffers`, one channel each. Only from within the
    /// input callback, on bus 1; real-time safe.
    ORVANE_REALTIME virtual OSStatus AudioUnitRender(
        AudioUnit unit, AudioUnitRenderActionFlags& flags, const AudioTimeStamp& time, std::uint32_t bus,
        std::uint32_t frameCount, AudioBufferList& buffers
    ) noexcept = 0;
};

} // namespace orvane::platform
