#include "platform/audio_hardware/audio_unit_instance.h"

#include "platform/audio_hardware/property_bytes.h"
#include "platform/base/audio_thread_scope.h"

#include <algorithm>
#include <cmath>

namespace orvane::platform {

namespace {

constexpr std::uint32_t outputElement = 0;
constexpr std::uint32_t inputElement = 1;

/// Where a property may be set.
struct Place {
    std::uint32_t scope;
    std::uint32_t element;

    bool operator==(const Place&) const = default;
};

constexpr Place globalPlace = {kAudioUnitScope_Global, 0};
constexpr Place deviceInput = {kAudioUnitScope_Input, inputElement};
constexpr Place deviceOutput = {kAudioUnitScope_Output, outputElement};
/// What comes out of the unit's input element, and what goes into its output element.
constexpr Place fromInput = {kAudioUnitScope_Output, inputElement};
constexpr Place intoOutput = {kAudioUnitScope_Input, outputElement};

AudioBuffer channelBuffer(float* samples, std::uint32_t frameCount) {
    return {1, frameCount * static_cast<std::uint32_t>(sizeof(float)), samples};
}

} // namespace

OSStatus AudioUnitInstance::setProperty(
    std::uint32_t property, std::uint32_t scope, std::uint32_t element, std::span<const std::byte> data
) {
    if (stream) return kAudioUnitErr_Initialized;
    const Place place = {scope, element};
    const auto at = [place](Place wanted, std::span<const std::byte> value, auto& target) {
        if (place != wanted) return kAudioUnitErr_InvalidScope;
        return assignFrom(value, target, kAudioUnitErr_InvalidPropertyValue);
    };
    switch (property) {
    case kAudioOutputUnitProperty_EnableIO:
        return place == deviceInput ? at(deviceInput, data, enableInput)
                                    : at(deviceOutput, data, enableOutput);
    case kAudioOutputUnitProperty_CurrentDevice: {
        AudioObjectID chosen = 0;
        if (const OSStatus status = at(globalPlace, data, chosen); status != noErr) return status;
        if (!registry.find(chosen)) return kAudioHardwareBadDeviceError;
        device = chosen;
        return noErr;
    }
    case kAudioUnitProperty_StreamFormat:
        if (place == fromInput) return setFormat(inputFormat, data);
        return place == intoOutput ? setFormat(outputFormat, data) : kAudioUnitErr_InvalidScope;
    case kAudioUnitProperty_MaximumFramesPerSlice:
        return at(globalPlace, data, maximumFrames);
    case kAudioOutputUnitProperty_SetInputCallback:
        return at(globalPlace, data, inputCallback);
    case kAudioUnitProperty_SetRenderCallback:
        return at(intoOutput, data, renderCallback);
    default:
        return kAudioUnitErr_InvalidProperty;
    }
}

PropertySize AudioUnitInstance::getProperty(
    std::uint32_t property, std::uint32_t scope, std::uint32_t element, std::span<std::byte> data
) const {
    if (Place{scope, element} != globalPlace) return {kAudioUnitErr_InvalidScope, 0};
    const auto copy = [data](const auto& value) -> PropertySize {
        const std::span<const std::byte> bytes = bytesOf(value);
        if (data.size() != bytes.size()) return {kAudioUnitErr_InvalidPropertyValue, 0};
        std::ranges::copy(bytes, data.begin());
        return {noErr, static_cast<std::uint32_t>(bytes.size())};
    };
    switch (property) {
    case kAudioOutputUnitProperty_XRunCount:
        return copy(stream ? stream->xrunCount() : std::uint32_t{0});
    case kAudioOutputUnitProperty_RealtimePriority:
        return copy(stream ? std::int32_t{stream->realtimePriority()} : std::int32_t{0});
    case kAudioOutputUnitProperty_FailureReason:
        return copy(StringRef{&failureReason});
    default:
        return {kAudioUnitErr_InvalidProperty, 0};
    }
}

OSStatus
AudioUnitInstance::setFormat(AudioStreamBasicDescription& format, std::span<const std::byte> data) const {
    AudioStreamBasicDescription wanted;
    if (const OSStatus status = assignFrom(data, wanted, kAudioUnitErr_InvalidPropertyValue); status != noErr)
        return status;
    const bool isPlanarFloat = wanted.mFormatID == kAudioFormatLinearPCM
                               && wanted.mFormatFlags == nonInterleavedFloatFlags
                               && wanted.mBitsPerChannel == 32 && wanted.mChannelsPerFrame >= 1;
    if (!isPlanarFloat) return kAudioUnitErr_FormatNotSupported;
    // Nothing here resamples: the unit runs at the device's rate.
    const std::optional<AudioDriverDevice> described = registry.describe(device);
    if (described && described->sampleRate != wanted.mSampleRate) return kAudioUnitErr_FormatNotSupported;
    format = wanted;
    return noErr;
}

OSStatus AudioUnitInstance::initialize() {
    if (stream) return noErr;
    const std::optional<RegisteredDevice> target = registry.find(device);
    if (!target) return kAudioHardwareBadDeviceError;
    failureReason.clear();
    auto opened = target->driver->open(*target->uid, enableInput != 0, *this);
    if (!opened) return opened.error();
    stream = std::move(opened).value();
    outputBuffers.resize(outputFormat.mChannelsPerFrame);
    spareOutputs.assign(outputFormat.mChannelsPerFrame, std::vector<float>(maximumFrames, 0.0F));
    return noErr;
}

OSStatus AudioUnitInstance::uninitialize() {
    stream.reset();
    return noErr;
}

OSStatus AudioUnitInstance::start() {
    failureReason.clear();
    return stream ? stream->start() : kAudioUnitErr_Uninitialized;
}

OSStatus AudioUnitInstance::stop() {
    return !stream || stream->stop() ? noErr : kAudioUnitErr_CallbackAbandoned;
}

OSStatus AudioUnitInstance::renderInput(std::uint32_t bus, std::uint32_t frameCount, AudioBufferList& buffers)
    const noexcept {
    if (bus != inputElement) return kAudioUnitErr_InvalidElement;
    if (frameCount > maximumFrames) return kAudioUnitErr_TooManyFramesToProcess;
    if (frameCount != sliceFrames) return kAudioUnitErr_CannotDoInCurrentContext;
    for (std::size_t channel = 0; channel < buffers.mBuffers.size(); ++channel) {
        const AudioBuffer& buffer = buffers.mBuffers[channel];
        if (buffer.mData == nullptr || buffer.mDataByteSize < frameCount * sizeof(float))
            return kAudioUnitErr_InvalidParameter;
        const std::span<float> samples(static_cast<float*>(buffer.mData), frameCount);
        if (channel < captured.size())
            std::ranges::copy(captured[channel].subspan(sliceStart, frameCount), samples.begin());
        else
            std::ranges::fill(samples, 0.0F);
    }
    return noErr;
}

void AudioUnitInstance::cycle(
    std::span<const std::span<const float>> inputs, std::span<const std::span<float>> outputs,
    std::size_t frameCount
) noexcept {
    const AudioThreadScope audioThread;
    if (maximumFrames == 0) {
        playSilence(outputs);
        return;
    }
    captured = inputs;
    for (sliceStart = 0; sliceStart < frameCount; sliceStart += maximumFrames) {
        const std::size_t left = frameCount - sliceStart;
        sliceFrames = static_cast<std::uint32_t>(std::min<std::size_t>(left, maximumFrames));
        captureSlice();
        renderSlice(outputs);
        sampleTime += static_cast<double>(sliceFrames);
    }
    captured = {};
    sliceFrames = 0;
}

AudioTimeStamp AudioUnitInstance::now() const noexcept {
    return {.mSampleTime = sampleTime, .mFlags = kAudioTimeStampSampleTimeValid};
}

void AudioUnitInstance::captureSlice() noexcept {
    if (enableInput == 0 || inputCallback.inputProc == nullptr) return;
    AudioUnitRenderActionFlags flags = 0;
    inputCallback.inputProc(inputCallback.inputProcRefCon, flags, now(), inputElement, sliceFrames, nullptr);
}

void AudioUnitInstance::renderSlice(std::span<const std::span<float>> outputs) noexcept {
    if (renderCallback.inputProc == nullptr) {
        playSilence(outputs);
        return;
    }
    for (std::size_t channel = 0; channel < outputBuffers.size(); ++channel)
        outputBuffers[channel] = channelBuffer(
            channel < outputs.size() ? outputs[channel].data() + sliceStart : spareOutputs[channel].data(),
            sliceFrames
        );
    AudioBufferList list{outputBuffers};
    AudioUnitRenderActionFlags flags = 0;
    const OSStatus status = renderCallback.inputProc(
        renderCallback.inputProcRefCon, flags, now(), outputElement, sliceFrames, &list
    );
    if (status != noErr)
        playSilence(outputs);
    else
        playSilence(outputs.subspan(std::min(outputs.size(), outputBuffers.size())));
}

void AudioUnitInstance::playSilence(std::span<const std::span<float>> outputs) const noexcept {
    for (const std::span<float>& output : outputs)
        std::ranges::fill(output.subspan(sliceStart, sliceFrames), 0.0F);
}

} // namespace orvane::platform
