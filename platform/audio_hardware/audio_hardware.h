#pragma once

#include "dsp/realtime.h"
#include "platform/audio_hardware/audio_driver.h"
#include "platform/base/audio_component_description.h"
#include "platform/base/os_status.h"
#include "platform/base/result.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace orvane::platform {

/// A device of the hardware layer. Assigned once per device uid for the life of the process, so that a device
/// that comes back has the same id.
using AudioObjectID = std::uint32_t;
/// The system itself; never the id of a device.
inline constexpr AudioObjectID kAudioObjectSystemObject = 1;

/// A direction of a device's streams.
enum class AudioScope { input, output };

// Properties of the hardware layer, each a question about one device. Error messages name some of them by
// their selectors.

/// kAudioHardwarePropertyDevices: the devices that are present, in a stable order.
struct HardwareDevices {};

/// kAudioDevicePropertyDeviceUID: names the device across reconnections.
struct DeviceUID {
    static constexpr std::uint32_t selector = fourCharCode("uid ");
    AudioObjectID device = 0;
};

/// kAudioObjectPropertyName: for people.
struct DeviceName {
    static constexpr std::uint32_t selector = fourCharCode("lnam");
    AudioObjectID device = 0;
};

/// kAudioDevicePropertyStreamConfiguration: the channels of each of the device's streams.
struct StreamConfiguration {
    AudioObjectID device = 0;
    AudioScope scope = AudioScope::input;
};

/// kAudioDevicePropertyNominalSampleRate: in Hz.
struct NominalSampleRate {
    static constexpr std::uint32_t selector = fourCharCode("nsrt");
    AudioObjectID device = 0;
};

/// kAudioDevicePropertyBufferFrameSize: frames per cycle.
struct BufferFrameSize {
    AudioObjectID device = 0;
};

/// kAudioDevicePropertyDeviceIsAlive: whether the device is present. Reading it has this device alone
/// described anew for the properties that are read next.
struct DeviceIsAlive {
    AudioObjectID device = 0;
};

/// Why a property of unknown length could not be read: its size is asked for before its data.
struct SizedReadFailure {
    enum class Step { size, data };
    Step step = Step::size;
    OSStatus status = noErr;
};

// Properties of the output unit, to be set before it is initialised.

/// kAudioOutputUnitProperty_EnableIO: whether the unit captures or plays.
struct EnableIO {
    AudioScope scope = AudioScope::input;
    bool enable = true;
};

/// kAudioOutputUnitProperty_CurrentDevice: the device that the unit opens.
struct CurrentDevice {
    AudioObjectID device = 0;
};

/// kAudioUnitProperty_StreamFormat: the format that the unit captures or plays. Always linear PCM of 32-bit
/// floats, packed, not interleaved.
struct StreamFormat {
    AudioScope scope = AudioScope::input;
    /// In Hz.
    double sampleRate = 0.0;
    std::uint32_t channelCount = 0;
};

/// kAudioUnitProperty_MaximumFramesPerSlice: the longest block that the callbacks get.
struct MaximumFramesPerSlice {
    std::uint32_t frameCount = 0;
};

/// kAudioOutputUnitProperty_SetInputCallback: called in each cycle once `frameCount` frames are captured. I/O
/// thread, must be real-time safe.
struct SetInputCallback {
    OSStatus (*inputProc)(void* context, std::uint32_t frameCount) noexcept = nullptr;
    void* context = nullptr;
};

/// kAudioUnitProperty_SetRenderCallback: called in each cycle to fill `outputs`, one block of `frameCount`
/// frames a channel. I/O thread, must be real-time safe.
struct SetRenderCallback {
    using Proc = OSStatus (*)(
        void* context, std::span<const std::span<float>> outputs, std::size_t frameCount
    ) noexcept;
    Proc renderProc = nullptr;
    void* context = nullptr;
};

/// Any property of the output unit.
using AudioUnitProperty = std::variant<
    EnableIO, CurrentDevice, StreamFormat, MaximumFramesPerSlice, SetInputCallback, SetRenderCallback>;

/// An instance of the hardware output unit, which captures from and plays to one device. Its destructor is
/// AudioComponentInstanceDispose. Main thread unless stated otherwise.
class AudioUnit {
  public:
    virtual ~AudioUnit() = default;

    virtual OSStatus AudioUnitSetProperty(const AudioUnitProperty& property) = 0;

    /// Opens the device as the properties say.
    virtual OSStatus AudioUnitInitialize() = 0;
    virtual OSStatus AudioUnitUninitialize() = 0;
    virtual OSStatus AudioOutputUnitStart() = 0;
    /// No callback runs when it returns and none comes after. Fails with kAudioUnitErr_CallbackAbandoned if
    /// one did not return within `stopPatience`: then the unit and what its callbacks use must never be
    /// freed.
    virtual OSStatus AudioOutputUnitStop() = 0;

    /// Copies what the device captured in this cycle into the first `frameCount` frames of `blocks`, one a
    /// channel. Only from within the input callback; real-time safe.
    ORVANE_REALTIME virtual OSStatus
    AudioUnitRender(std::span<const std::span<float>> blocks, std::uint32_t frameCount) noexcept = 0;

    /// Cycles that came late or lost samples since the last start.
    [[nodiscard]] virtual std::uint32_t xrunCount() const = 0;
    /// The real-time priority of the I/O thread; 0 if it has none.
    [[nodiscard]] virtual int realtimePriority() const = 0;
    /// Why the unit could not be initialised or started last, as one sentence for people; empty if only the
    /// status is known.
    [[nodiscard]] virtual std::string failureReason() const = 0;
};

/// A component that instances can be made of; 0 if none was found.
using AudioComponent = std::uint32_t;

/// The audio hardware of the machine: devices with properties and listeners, and the unit that runs one.
/// Main thread unless stated otherwise. Must outlive every unit and listener.
class AudioHardware {
  public:
    virtual ~AudioHardware() = default;

    virtual Result<std::vector<AudioObjectID>, SizedReadFailure> AudioObjectGetPropertyData(HardwareDevices
    ) = 0;
    virtual Result<std::string, OSStatus> AudioObjectGetPropertyData(DeviceUID property) = 0;
    virtual Result<std::string, OSStatus> AudioObjectGetPropertyData(DeviceName property) = 0;
    virtual Result<std::vector<std::uint32_t>, SizedReadFailure>
    AudioObjectGetPropertyData(StreamConfiguration property) = 0;
    virtual Result<double, OSStatus> AudioObjectGetPropertyData(NominalSampleRate property) = 0;
    /// Any thread.
    virtual Result<std::uint32_t, OSStatus> AudioObjectGetPropertyData(BufferFrameSize property) = 0;
    virtual Result<bool, OSStatus> AudioObjectGetPropertyData(DeviceIsAlive property) = 0;

    /// `noErr` means that the request was accepted, not that it was granted: read it back.
    virtual OSStatus AudioObjectSetPropertyData(BufferFrameSize property, std::uint32_t frameCount) = 0;

    /// Calls `block` on the hardware layer's notification thread at every such change of a device. Destroying
    /// the watch is AudioObjectRemovePropertyListenerBlock.
    virtual Result<std::unique_ptr<AudioDeviceWatch>, OSStatus> AudioObjectAddPropertyListenerBlock(
        AudioObjectID device, AudioDeviceChange change, std::function<void()> block
    ) = 0;

    /// Finds the output unit by its exact description.
    virtual AudioComponent AudioComponentFindNext(const AudioComponentDescription& description) = 0;
    virtual Result<std::unique_ptr<AudioUnit>, OSStatus> AudioComponentInstanceNew(AudioComponent component
    ) = 0;
};

} // namespace orvane::platform
