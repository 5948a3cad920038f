#include "support/scripted_audio_hardware.h"

#include "support/allocation_guard.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace orvane::test {

using namespace platform;

namespace {

constexpr AudioComponent theComponent = 77;

/// The one instance there is; only its address counts.
char instanceToken = 0;
AudioUnit theUnit() {
    return reinterpret_cast<AudioUnit>(&instanceToken);
}

std::string codeText(std::uint32_t code) {
    return {
        static_cast<char>(code >> 24U), static_cast<char>(code >> 16U), static_cast<char>(code >> 8U),
        static_cast<char>(code)};
}

std::string addressText(AudioObjectID object, const AudioObjectPropertyAddress& address) {
    return fmt::format(
        "{} {} {} {}", object, codeText(address.mSelector), codeText(address.mScope), address.mElement
    );
}

template <class Value>
Value read(std::span<const std::byte> data) {
    Value value;
    std::memcpy(&value, data.data(), sizeof value);
    return value;
}

template <class Value>
void append(std::vector<std::byte>& bytes, const Value& value) {
    const auto more = std::as_bytes(std::span(&value, 1));
    bytes.insert(bytes.end(), more.begin(), more.end());
}

std::string formatText(const AudioStreamBasicDescription& format) {
    return fmt::format(
        "{} Hz {} {:#x}, packet {}/{}, frame {}, {} channels, {} bits, {}", format.mSampleRate,
        codeText(format.mFormatID), format.mFormatFlags, format.mBytesPerPacket, format.mFramesPerPacket,
        format.mBytesPerFrame, format.mChannelsPerFrame, format.mBitsPerChannel, format.mReserved
    );
}

std::string valueText(std::span<const std::byte> data) {
    switch (data.size()) {
    case sizeof(std::uint32_t):
        return std::to_string(read<std::uint32_t>(data));
    case sizeof(AURenderCallbackStruct):
        return "callback";
    case sizeof(AudioStreamBasicDescription):
        return formatText(read<AudioStreamBasicDescription>(data));
    default:
        return fmt::format("{} bytes", data.size());
    }
}

std::vector<std::byte> configurationOf(const std::vector<std::uint32_t>& streams) {
    std::vector<std::byte> bytes;
    if (streams.empty()) return bytes;
    append(bytes, StreamConfigurationHeader{static_cast<std::uint32_t>(streams.size())});
    for (const std::uint32_t channels : streams)
        append(bytes, AudioBuffer{.mNumberChannels = channels});
    return bytes;
}

} // namespace

OSStatus ScriptedAudioHardware::record(std::string call) {
    const std::scoped_lock guard(mutex);
    const auto failure =
        std::ranges::find_if(failures, [&](const auto& one) { return call.starts_with(one.first); });
    calls.push_back(std::move(call));
    return failure == failures.end() ? noErr : failure->second;
}

ScriptedDevice* ScriptedAudioHardware::find(AudioObjectID id) {
    const auto found = std::ranges::find(devices, id, &ScriptedDevice::id);
    return found == devices.end() ? nullptr : &*found;
}

std::optional<std::vector<std::byte>>
ScriptedAudioHardware::valueOf(AudioObjectID object, const AudioObjectPropertyAddress& address) {
    std::vector<std::byte> bytes;
    if (object == kAudioObjectSystemObject) {
        for (const ScriptedDevice& device : devices)
            append(bytes, device.id);
        return bytes;
    }
    const ScriptedDevice* const device = find(object);
    if (device == nullptr) return std::nullopt;
    switch (address.mSelector) {
    case kAudioDevicePropertyDeviceUID:
        append(bytes, &device->uid);
        return bytes;
    case kAudioObjectPropertyName:
        append(bytes, &device->name);
        return bytes;
    case kAudioDevicePropertyNominalSampleRate:
        append(bytes, device->sampleRate);
        return bytes;
    case kAudioDevicePropertyBufferFrameSize:
        append(bytes, device->bufferSize);
        return bytes;
    case kAudioDevicePropertyStreamConfiguration:
        return configurationOf(
            address.mScope == kAudioObjectPropertyScopeInput ? device->inputStreams : device->outputStreams
        );
    default:
        return std::nullopt;
    }
}

PropertySize ScriptedAudioHardware::AudioObjectGetPropertyDataSize(
    AudioObjectID object, const AudioObjectPropertyAddress& address
) {
    const OSStatus status = record("AudioObjectGetPropertyDataSize " + addressText(object, address));
    const std::scoped_lock guard(mutex);
    const auto value = valueOf(object, address);
    if (status != noErr || !value) return {status != noErr ? status : kAudioHardwareBadObjectError, 0};
    return {noErr, static_cast<std::uint32_t>(value->size())};
}

PropertySize ScriptedAudioHardware::AudioObjectGetPropertyData(
    AudioObjectID object, const AudioObjectPropertyAddress& address, std::span<std::byte> data
) {
    const OSStatus status = record("AudioObjectGetPropertyData " + addressText(object, address));
    if (status != noErr) return {status, 0};
    const std::scoped_lock guard(mutex);
    const auto value = valueOf(object, address);
    if (!value) return {kAudioHardwareBadObjectError, 0};
    if (value->size() != data.size()) return {kAudioHardwareBadPropertySizeError, 0};
    std::ranges::copy(*value, data.begin());
    return {noErr, static_cast<std::uint32_t>(value->size())};
}

OSStatus ScriptedAudioHardware::AudioObjectSetPropertyData(
    AudioObjectID object, const AudioObjectPropertyAddress& address, std::span<const std::byte> data
) {
    const OSStatus status =
        record("AudioObjectSetPropertyData " + addressText(object, address) + " = " + valueText(data));
    const std::scoped_lock guard(mutex);
    ScriptedDevice* const device = find(object);
    if (status == noErr && device != nullptr && !device->keepsBufferSize)
        device->bufferSize = read<std::uint32_t>(data);
    return status;
}

AudioHardware::ListenerRegistration ScriptedAudioHardware::AudioObjectAddPropertyListenerBlock(
    AudioObjectID object, const AudioObjectPropertyAddress& address, AudioObjectPropertyListenerBlock block
) {
    const OSStatus status = record("AudioObjectAddPropertyListenerBlock " + addressText(object, address));
    if (status != noErr) return {status, 0};
    const std::scoped_lock guard(mutex);
    listeners.push_back(std::move(block));
    return {noErr, listeners.size()};
}

OSStatus ScriptedAudioHardware::AudioObjectRemovePropertyListenerBlock(AudioObjectPropertyListenerID listener
) {
    return record(fmt::format("AudioObjectRemovePropertyListenerBlock {}", listener));
}

AudioComponent ScriptedAudioHardware::AudioComponentFindNext(const AudioComponentDescription& description) {
    const OSStatus status = record(fmt::format(
        "AudioComponentFindNext {} {} {} {} {}", codeText(description.componentType),
        codeText(description.componentSubType), codeText(description.componentManufacturer),
        description.componentFlags, description.componentFlagsMask
    ));
    return status == noErr ? theComponent : 0;
}

AudioHardware::NewInstance ScriptedAudioHardware::AudioComponentInstanceNew(AudioComponent component) {
    const OSStatus status = record(fmt::format("AudioComponentInstanceNew {}", component));
    return {status, status == noErr && !givesEmptyInstance ? theUnit() : nullptr};
}

OSStatus ScriptedAudioHardware::AudioComponentInstanceDispose(AudioUnit) {
    return record("AudioComponentInstanceDispose");
}

OSStatus ScriptedAudioHardware::AudioUnitSetProperty(
    AudioUnit, std::uint32_t property, std::uint32_t scope, std::uint32_t element,
    std::span<const std::byte> data
) {
    if (property == kAudioOutputUnitProperty_SetInputCallback)
        inputCallback = read<AURenderCallbackStruct>(data);
    if (property == kAudioUnitProperty_SetRenderCallback) renderCallback = read<AURenderCallbackStruct>(data);
    if (property == kAudioUnitProperty_MaximumFramesPerSlice) maximumFrames = read<std::uint32_t>(data);
    return record(fmt::format("AudioUnitSetProperty {} {} {} = {}", property, scope, element, valueText(data))
    );
}

PropertySize ScriptedAudioHardware::AudioUnitGetProperty(
    AudioUnit, std::uint32_t property, std::uint32_t scope, std::uint32_t element, std::span<std::byte> data
) {
    const OSStatus status =
        record(fmt::format("AudioUnitGetProperty {} {} {}", codeText(property), scope, element));
    if (status != noErr) return {status, 0};
    std::vector<std::byte> value;
    if (property == kAudioOutputUnitProperty_XRunCount)
        append(value, xrunCount);
    else
        append(value, realtimePriority);
    if (value.size() != data.size()) return {kAudioUnitErr_InvalidPropertyValue, 0};
    std::ranges::copy(value, data.begin());
    return {noErr, static_cast<std::uint32_t>(value.size())};
}

OSStatus ScriptedAudioHardware::AudioUnitInitialize(AudioUnit) {
    return record("AudioUnitInitialize");
}
OSStatus ScriptedAudioHardware::AudioUnitUninitialize(AudioUnit) {
    return record("AudioUnitUninitialize");
}
OSStatus ScriptedAudioHardware::AudioOutputUnitStart(AudioUnit) {
    return record("AudioOutputUnitStart");
}
OSStatus ScriptedAudioHardware::AudioOutputUnitStop(AudioUnit) {
    return record("AudioOutputUnitStop");
}

OSStatus ScriptedAudioHardware::AudioUnitRender(
    AudioUnit unit, AudioUnitRenderActionFlags&, const AudioTimeStamp&, std::uint32_t bus,
    std::uint32_t frameCount, AudioBufferList& buffers
) noexcept {
    ++renderCalls;
    if (unit != theUnit() || bus != 1) return kAudio_ParamError;
    if (frameCount > maximumFrames) return kAudioUnitErr_TooManyFramesToProcess;
    for (std::size_t channel = 0; channel < buffers.mBuffers.size(); ++channel) {
        const AudioBuffer& buffer = buffers.mBuffers[channel];
        if (buffer.mNumberChannels != 1 || buffer.mDataByteSize != frameCount * sizeof(float))
            return kAudio_ParamError;
        for (std::uint32_t i = 0; i < frameCount; ++i)
            static_cast<float*>(buffer.mData)[i] =
                static_cast<float>(channel) + static_cast<float>(i) / 65536.0F;
    }
    return noErr;
}

void ScriptedAudioHardware::changeBufferSize(AudioObjectID device, std::uint32_t frameCount) {
    std::vector<AudioObjectPropertyListenerBlock> told;
    {
        const std::scoped_lock guard(mutex);
        find(device)->bufferSize = frameCount;
        told = listeners;
    }
    const AudioObjectPropertyAddress address{
        kAudioDevicePropertyBufferFrameSize, kAudioObjectPropertyScopeGlobal, 0};
    for (const auto& listener : told)
        listener(std::span(&address, 1));
}

OSStatus ScriptedAudioHardware::captureCycle(std::uint32_t frameCount) {
    AudioUnitRenderActionFlags flags = 0;
    const AllocationGuard guard;
    return inputCallback.inputProc(inputCallback.inputProcRefCon, flags, {}, 1, frameCount, nullptr);
}

OSStatus ScriptedAudioHardware::renderCycle(std::uint32_t frameCount, AudioBufferList* buffers) {
    AudioUnitRenderActionFlags flags = 0;
    const AllocationGuard guard;
    return renderCallback.inputProc(renderCallback.inputProcRefCon, flags, {}, 0, frameCount, buffers);
}

} // namespace orvane::test
