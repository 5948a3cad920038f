#include "platform/audio_hardware/audio_unit_instance.h"

#include "platform/base/audio_thread_scope.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace orvane::platform {

OSStatus AudioUnitInstance::AudioUnitSetProperty(const AudioUnitProperty& property) {
    if (stream) return kAudioUnitErr_Initialized;
    return std::visit([this](const auto& value) { return set(value); }, property);
}

OSStatus AudioUnitInstance::set(const EnableIO& property) {
    // The unit always plays.
    if (property.scope == AudioScope::input) enableInput = property.enable;
    return noErr;
}

OSStatus AudioUnitInstance::set(const CurrentDevice& property) {
    if (registry.find(property.device) == nullptr) return kAudioHardwareBadDeviceError;
    device = property.device;
    return noErr;
}

OSStatus AudioUnitInstance::set(const StreamFormat& property) {
    if (property.channelCount == 0) return kAudioUnitErr_FormatNotSupported;
    // Nothing here resamples: the unit runs at the device's rate.
    const RegisteredDevice* target = registry.find(device);
    if (target != nullptr && target->listed && target->listed->sampleRate != property.sampleRate)
        return kAudioUnitErr_FormatNotSupported;
    if (property.scope == AudioScope::output) outputChannelCount = property.channelCount;
    return noErr;
}

OSStatus AudioUnitInstance::set(const MaximumFramesPerSlice& property) {
    // Slices of no frames would never end.
    maximumFrames = std::max(property.frameCount, 1U);
    return noErr;
}

OSStatus AudioUnitInstance::set(const SetInputCallback& property) {
    inputCallback = property;
    return noErr;
}

OSStatus AudioUnitInstance::set(const SetRenderCallback& property) {
    renderCallback = property;
    return noErr;
}

OSStatus AudioUnitInstance::AudioUnitInitialize() {
    if (stream) return noErr;
    const RegisteredDevice* target = registry.find(device);
    if (target == nullptr) return kAudioHardwareBadDeviceError;
    reason.clear();
    auto opened = target->driver.open(target->uid, enableInput, *this);
    if (!opened) return opened.error();
    stream = std::move(opened).value();
    outputBlocks.resize(outputChannelCount);
    spareOutputs.assign(outputChannelCount, std::vector<float>(maximumFrames, 0.0F));
    return noErr;
}

OSStatus AudioUnitInstance::AudioUnitUninitialize() {
    stream.reset();
    return noErr;
}

OSStatus AudioUnitInstance::AudioOutputUnitStart() {
    reason.clear();
    return stream ? stream->start() : kAudioUnitErr_Uninitialized;
}

OSStatus AudioUnitInstance::AudioOutputUnitStop() {
    return !stream || stream->stop() ? noErr : kAudioUnitErr_CallbackAbandoned;
}

OSStatus AudioUnitInstance::AudioUnitRender(
    std::span<const std::span<float>> blocks, std::uint32_t frameCount
) noexcept {
    if (frameCount > maximumFrames) return kAudioUnitErr_TooManyFramesToProcess;
    if (frameCount != sliceFrames) return kAudioUnitErr_CannotDoInCurrentContext;
    for (std::size_t channel = 0; channel < blocks.size(); ++channel) {
        if (blocks[channel].size() < frameCount) return kAudioUnitErr_InvalidParameter;
        const std::span<float> samples = blocks[channel].first(frameCount);
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
    captured = inputs;
    for (sliceStart = 0; sliceStart < frameCount; sliceStart += maximumFrames) {
        const std::size_t left = frameCount - sliceStart;
        sliceFrames = static_cast<std::uint32_t>(std::min<std::size_t>(left, maximumFrames));
        captureSlice();
        renderSlice(outputs);
    }
    captured = {};
    sliceFrames = 0;
}

void AudioUnitInstance::captureSlice() noexcept {
    if (enableInput && inputCallback.inputProc != nullptr)
        inputCallback.inputProc(inputCallback.context, sliceFrames);
}

void AudioUnitInstance::renderSlice(std::span<const std::span<float>> outputs) noexcept {
    if (renderCallback.renderProc == nullptr) {
        playSilence(outputs);
        return;
    }
    for (std::size_t channel = 0; channel < outputBlocks.size(); ++channel)
        outputBlocks[channel] = channel < outputs.size()
                                    ? outputs[channel].subspan(sliceStart, sliceFrames)
                                    : std::span(spareOutputs[channel]).first(sliceFrames);
    const OSStatus status = renderCallback.renderProc(renderCallback.context, outputBlocks, sliceFrames);
    if (status != noErr)
        playSilence(outputs);
    else
        playSilence(outputs.subspan(std::min(outputs.size(), outputBlocks.size())));
}

void AudioUnitInstance::playSilence(std::span<const std::span<float>> outputs) const noexcept {
    for (const std::span<float>& output : outputs)
        std::ranges::fill(output.subspan(sliceStart, sliceFrames), 0.0F);
}

} // namespace orvane::platform
