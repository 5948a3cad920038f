#pragma once

#include "platform/audio_hardware/audio_hardware.h"
#include "platform/audio_hardware/property_bytes.h"
#include "support/allocation_guard.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <span>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace orvane::test {

/// A device as a test describes it.
struct ScriptedDevice {
    platform::AudioObjectID id = 0;
    std::string uid = {};
    std::string name = {};
    /// Channels per stream.
    std::vector<std::uint32_t> inputStreams = {};
    std::vector<std::uint32_t> outputStreams = {};
    double sampleRate = 48000.0;
    std::uint32_t bufferSize = 512;
};

/// Audio hardware that writes down every call as one line with its values decoded, such as
/// "AudioUnitSetProperty 2003 1 1 = 1", fails where it is told to, and runs the cycles that a test asks for.
/// Notifications may come from other threads, also after their listener was removed.
class ScriptedAudioHardware final : public platform::AudioHardware {
    using OSStatus = platform::OSStatus;
    using Object = platform::AudioObjectID;
    using Address = platform::AudioObjectPropertyAddress;
    using Listener = platform::AudioObjectPropertyListenerBlock;
    using Unit = platform::AudioUnit;
    using Bytes = std::span<const std::byte>;
    using PropertySize = platform::PropertySize;

  public:
    std::vector<ScriptedDevice> devices;
    /// The status that a call fails with whose line begins like the key.
    std::map<std::string, OSStatus> failures;
    /// The index in `calls` of one more call that fails.
    std::optional<std::size_t> failingCall;
    static constexpr platform::OSStatus failure = -50;
    /// Called after each answer about a size, as devices may come and go at any time.
    std::function<void()> afterSize;
    /// Every call but AudioUnitRender, whose cycles may not allocate.
    std::vector<std::string> calls;

    /// Somebody else gives the device another buffer size; every listener that was ever registered hears it.
    void changeBufferSize(Object device, std::uint32_t frameCount) {
        std::vector<Listener> told;
        {
            const std::scoped_lock guard(mutex);
            find(device)->bufferSize = frameCount;
            told = listeners;
        }
        for (const Listener& listener : told)
            listener({});
    }

    /// One cycle's input callback under the allocation guard. Sample i of channel c is c + i / 65536.
    OSStatus captureCycle(std::uint32_t frameCount) {
        platform::AudioUnitRenderActionFlags flags = 0;
        const AllocationGuard guard;
        return inputCallback.inputProc(inputCallback.inputProcRefCon, flags, {}, 1, frameCount, nullptr);
    }

    /// One cycle's output callback under the allocation guard, into `buffers` or none.
    OSStatus renderCycle(std::uint32_t frameCount, platform::AudioBufferList* buffers) {
        platform::AudioUnitRenderActionFlags flags = 0;
        const AllocationGuard guard;
        return renderCallback.inputProc(renderCallback.inputProcRefCon, flags, {}, 0, frameCount, buffers);
    }

    PropertySize AudioObjectGetPropertyDataSize(Object object, const Address& address) override {
        const OSStatus status = recordProperty("AudioObjectGetPropertyDataSize", object, address);
        const auto size = static_cast<std::uint32_t>(valueOf(object, address).size());
        if (afterSize) afterSize();
        return {status, size};
    }
    PropertySize
    AudioObjectGetPropertyData(Object object, const Address& address, std::span<std::byte> data) override {
        const OSStatus status = recordProperty("AudioObjectGetPropertyData", object, address);
        const std::vector<std::byte> value = valueOf(object, address);
        if (status != platform::noErr) return {status, 0};
        // A list may have become shorter since its size was asked for.
        const bool isList = object == platform::kAudioObjectSystemObject;
        if (isList ? value.size() > data.size() : value.size() != data.size())
            return {platform::kAudioHardwareBadPropertySizeError, 0};
        std::ranges::copy(value, data.begin());
        return {platform::noErr, static_cast<std::uint32_t>(value.size())};
    }
    OSStatus AudioObjectSetPropertyData(Object object, const Address& address, Bytes data) override {
        const OSStatus status =
            recordProperty("AudioObjectSetPropertyData", object, address, "=", textOf(data));
        const std::scoped_lock guard(mutex);
        if (status == platform::noErr) find(object)->bufferSize = read<std::uint32_t>(data);
        return status;
    }
    ListenerRegistration
    AudioObjectAddPropertyListenerBlock(Object object, const Address& address, Listener block) override {
        const OSStatus status = recordProperty("AudioObjectAddPropertyListenerBlock", object, address);
        const std::scoped_lock guard(mutex);
        if (status == platform::noErr) listeners.push_back(std::move(block));
        return {status, status == platform::noErr ? listeners.size() : 0};
    }
    OSStatus AudioObjectRemovePropertyListenerBlock(platform::AudioObjectPropertyListenerID listener
    ) override {
        return record("AudioObjectRemovePropertyListenerBlock", listener);
    }
    platform::AudioComponent AudioComponentFindNext(const platform::AudioComponentDescription& wanted
    ) override {
        const OSStatus status = record(
            "AudioComponentFindNext", codeText(wanted.componentType), codeText(wanted.componentSubType),
            codeText(wanted.componentManufacturer)
        );
        return status == platform::noErr ? 77 : 0;
    }
    /// Where its failure is no error, it comes back without a unit, though with success.
    NewInstance AudioComponentInstanceNew(platform::AudioComponent component) override {
        const OSStatus status = record("AudioComponentInstanceNew", component);
        if (status != platform::noErr || failures.contains("AudioComponentInstanceNew"))
            return {status, nullptr};
        return {status, reinterpret_cast<Unit>(this)};
    }
    OSStatus AudioComponentInstanceDispose(Unit) override { return record("AudioComponentInstanceDispose"); }
    OSStatus AudioUnitSetProperty(
        Unit, std::uint32_t property, std::uint32_t scope, std::uint32_t element, Bytes data
    ) override {
        if (property == platform::kAudioOutputUnitProperty_SetInputCallback)
            inputCallback = read<platform::AURenderCallbackStruct>(data);
        if (property == platform::kAudioUnitProperty_SetRenderCallback)
            renderCallback = read<platform::AURenderCallbackStruct>(data);
        if (property == platform::kAudioUnitProperty_MaximumFramesPerSlice)
            maximumFrames = read<std::uint32_t>(data);
        return record("AudioUnitSetProperty", property, scope, element, "=", textOf(data));
    }
    /// 3 cycles were late, at priority 70; no failure has a reason.
    PropertySize AudioUnitGetProperty(
        Unit, std::uint32_t property, std::uint32_t, std::uint32_t, std::span<std::byte> data
    ) override {
        if (property == platform::kAudioOutputUnitProperty_FailureReason)
            return {platform::kAudioUnitErr_InvalidProperty, 0};
        const std::uint32_t value = property == platform::kAudioOutputUnitProperty_XRunCount ? 3 : 70;
        std::ranges::copy(platform::bytesOf(value), data.begin());
        return {record("AudioUnitGetProperty"), sizeof value};
    }
    OSStatus AudioUnitInitialize(Unit) override { return record("AudioUnitInitialize"); }
    OSStatus AudioUnitUninitialize(Unit) override { return record("AudioUnitUninitialize"); }
    OSStatus AudioOutputUnitStart(Unit) override { return record("AudioOutputUnitStart"); }
    OSStatus AudioOutputUnitStop(Unit) override { return record("AudioOutputUnitStop"); }
    OSStatus AudioUnitRender(
        Unit, platform::AudioUnitRenderActionFlags&, const platform::AudioTimeStamp&, std::uint32_t bus,
        std::uint32_t frameCount, platform::AudioBufferList& buffers
    ) noexcept override {
        if (frameCount > maximumFrames) return platform::kAudioUnitErr_TooManyFramesToProcess;
        for (std::size_t channel = 0; channel < buffers.mBuffers.size(); ++channel) {
            const platform::AudioBuffer& buffer = buffers.mBuffers[channel];
            if (bus != 1 || buffer.mNumberChannels != 1 || buffer.mDataByteSize != frameCount * sizeof(float))
                return platform::kAudio_ParamError;
            for (std::uint32_t i = 0; i < frameCount; ++i)
                static_cast<float*>(buffer.mData)[i] =
                    static_cast<float>(channel) + static_cast<float>(i) / 65536.0F;
        }
        return platform::noErr;
    }

  private:
    template <class... Parts>
    static std::string joined(const Parts&... parts) {
        std::ostringstream line;
        const char* separator = "";
        ((line << std::exchange(separator, " ") << parts), ...);
        return line.str();
    }

    static std::string codeText(std::uint32_t code) {
        return {
            static_cast<char>(code >> 24U), static_cast<char>(code >> 16U), static_cast<char>(code >> 8U),
            static_cast<char>(code)};
    }

    template <class Value>
    static Value read(Bytes data) {
        Value value;
        std::memcpy(&value, data.data(), sizeof value);
        return value;
    }

    static std::string textOf(Bytes data) {
        if (data.size() == sizeof(std::uint32_t)) return std::to_string(read<std::uint32_t>(data));
        if (data.size() == sizeof(platform::AURenderCallbackStruct)) return "callback";
        const auto format = read<platform::AudioStreamBasicDescription>(data);
        return joined(
            format.mSampleRate, codeText(format.mFormatID), format.mFormatFlags, format.mBytesPerPacket,
            format.mFramesPerPacket, format.mBytesPerFrame, format.mChannelsPerFrame, format.mBitsPerChannel
        );
    }

    /// Writes the call down and says what it answers.
    template <class... Parts>
    OSStatus record(const Parts&... parts) {
        const std::string call = joined(parts...);
        const std::scoped_lock guard(mutex);
        calls.push_back(call);
        if (failingCall == calls.size() - 1) return failure;
        for (const auto& [beginning, status] : failures)
            if (call.starts_with(beginning)) return status;
        return platform::noErr;
    }

    template <class... Parts>
    OSStatus recordProperty(const char* name, Object object, const Address& address, const Parts&... more) {
        return record(name, object, codeText(address.mSelector), codeText(address.mScope), more...);
    }

    [[nodiscard]] ScriptedDevice* find(Object id) {
        return &*std::ranges::find(devices, id, &ScriptedDevice::id);
    }

    [[nodiscard]] std::vector<std::byte> valueOf(Object object, const Address& address) {
        const std::scoped_lock guard(mutex);
        std::vector<std::byte> bytes;
        const auto append = [&bytes](const auto& value) {
            bytes.insert(bytes.end(), platform::bytesOf(value).begin(), platform::bytesOf(value).end());
        };
        if (object == platform::kAudioObjectSystemObject) {
            for (const ScriptedDevice& device : devices)
                append(device.id);
            return bytes;
        }
        const ScriptedDevice& device = *find(object);
        switch (address.mSelector) {
        case platform::kAudioDevicePropertyDeviceUID:
            append(&device.uid);
            break;
        case platform::kAudioObjectPropertyName:
            append(&device.name);
            break;
        case platform::kAudioDevicePropertyNominalSampleRate:
            append(device.sampleRate);
            break;
        case platform::kAudioDevicePropertyBufferFrameSize:
            append(device.bufferSize);
            break;
        case platform::kAudioDevicePropertyDeviceIsAlive:
            append(std::uint32_t{1});
            break;
        default:
            const auto& streams = address.mScope == platform::kAudioObjectPropertyScopeInput
                                      ? device.inputStreams
                                      : device.outputStreams;
            if (streams.empty()) break;
            append(platform::StreamConfigurationHeader{static_cast<std::uint32_t>(streams.size())});
            for (const std::uint32_t channels : streams)
                append(platform::AudioBuffer{.mNumberChannels = channels});
        }
        return bytes;
    }

    std::mutex mutex;
    std::vector<Listener> listeners;
    platform::AURenderCallbackStruct inputCallback;
    platform::AURenderCallbackStruct renderCallback;
    std::uint32_t maximumFrames = 0;
};

} // namespace orvane::test
