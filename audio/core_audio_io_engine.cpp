#include "audio/core_audio_io_engine.h"

#include "audio/buffer_size_negotiation.h"
#include "platform/audio_hardware/property_bytes.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

namespace orvane::audio {

using namespace platform;

namespace {

// The unit's two buses.
constexpr std::uint32_t outputElement = 0;
constexpr std::uint32_t inputElement = 1;

constexpr AudioComponentDescription outputUnitDescription{
    .componentType = fourCharCode("auou"),
    .componentSubType = fourCharCode("ahal"),
    .componentManufacturer = fourCharCode("appl")};

AudioStreamBasicDescription streamFormat(double sampleRate, std::int64_t channelCount) {
    return {
        .mSampleRate = sampleRate,
        .mFormatID = kAudioFormatLinearPCM,
        .mFormatFlags = nonInterleavedFloatFlags,
        .mBytesPerPacket = sizeof(float),
        .mFramesPerPacket = 1,
        .mBytesPerFrame = sizeof(float),
        .mChannelsPerFrame = static_cast<std::uint32_t>(channelCount),
        .mBitsPerChannel = 32};
}

CoreAudioIOEngine::Outcome outcome(OSStatus status, const char* what) {
    if (status != noErr) return CoreAudioIOEngine::EngineError::osStatus(status, what);
    return Done{};
}

} // namespace

using EngineError = CoreAudioIOEngine::EngineError;
using Outcome = CoreAudioIOEngine::Outcome;

EngineError EngineError::osStatus(OSStatus status, std::string what, std::string reason) {
    EngineError error;
    error.failedStep = FailedStep{status, std::move(what), std::move(reason)};
    return error;
}

EngineError EngineError::componentNotFound() {
    return {};
}

std::string EngineError::description() const {
    if (!failedStep) return "Could not find the AUHAL audio component.";
    const std::string_view join = failedStep->reason.empty() ? "" : ". ";
    return fmt::format(
        "{} failed: OSStatus {}{}{}", failedStep->what, failedStep->status, join, failedStep->reason
    );
}

CoreAudioIOEngine::CoreAudioIOEngine(AudioHardware& audioHardware, const Configuration& fixed)
    : hardware(audioHardware), configuration(fixed) {}

CoreAudioIOEngine::~CoreAudioIOEngine() {
    stop();
    teardown();
}

Outcome CoreAudioIOEngine::setup() {
    using Step = Outcome (CoreAudioIOEngine::*)();
    constexpr Step steps[] = {
        &CoreAudioIOEngine::createUnit,
        &CoreAudioIOEngine::enableBuses,
        &CoreAudioIOEngine::selectDevice,
        &CoreAudioIOEngine::agreeOnBufferSize,
        &CoreAudioIOEngine::setFormats,
        &CoreAudioIOEngine::setMaximumSlice,
        &CoreAudioIOEngine::installInputCallback,
        &CoreAudioIOEngine::installRenderCallback,
        &CoreAudioIOEngine::initialize};
    for (const Step step : steps)
        if (Outcome done = (this->*step)(); !done) return done;
    return Done{};
}

Outcome CoreAudioIOEngine::createUnit() {
    const AudioComponent component = hardware.AudioComponentFindNext(outputUnitDescription);
    if (component == 0) return EngineError::componentNotFound();
    const auto made = hardware.AudioComponentInstanceNew(component);
    audioUnit = made.unit;
    if (made.status != noErr || audioUnit == nullptr)
        return EngineError::osStatus(made.status, "AudioComponentInstanceNew");
    return Done{};
}

Outcome CoreAudioIOEngine::enableBuses() {
    const std::uint32_t enable = 1;
    const std::uint32_t enableInput = configuration.enableInput ? 1 : 0;
    Outcome input = setUnitProperty(
        kAudioOutputUnitProperty_EnableIO, kAudioUnitScope_Input, inputElement, enableInput,
        configuration.enableInput ? "EnableIO input" : "EnableIO input (disable)"
    );
    if (!input) return input;
    return setUnitProperty(
        kAudioOutputUnitProperty_EnableIO, kAudioUnitScope_Output, outputElement, enable, "EnableIO output"
    );
}

Outcome CoreAudioIOEngine::selectDevice() {
    return setUnitProperty(
        kAudioOutputUnitProperty_CurrentDevice, kAudioUnitScope_Global, outputElement, configuration.deviceID,
        "CurrentDevice"
    );
}

Outcome CoreAudioIOEngine::agreeOnBufferSize() {
    BufferSizeAgreement agreement =
        negotiateBufferSize(hardware, configuration.deviceID, configuration.framesPerSlice);
    effectiveFrameCount = agreement.frameCount;
    negotiationWarning = std::move(agreement.warning);
    bufferSizeWatch.emplace(
        hardware, configuration.deviceID, configuration.framesPerSlice, agreement.frameCount,
        onDeviceBufferSizeChangedExternally
    );
    return Done{};
}

Outcome CoreAudioIOEngine::setFormats() {
    if (configuration.enableInput) {
        Outcome input = setUnitProperty(
            kAudioUnitProperty_StreamFormat, kAudioUnitScope_Output, inputElement,
            streamFormat(configuration.sampleRate, configuration.inputChannelCount), "StreamFormat input"
        );
        if (!input) return input;
    }
    return setUnitProperty(
        kAudioUnitProperty_StreamFormat, kAudioUnitScope_Input, outputElement,
        streamFormat(configuration.sampleRate, configuration.outputChannelCount), "StreamFormat output"
    );
}

Outcome CoreAudioIOEngine::setMaximumSlice() {
    return setUnitProperty(
        kAudioUnitProperty_MaximumFramesPerSlice, kAudioUnitScope_Global, outputElement, effectiveFrameCount,
        "MaximumFramesPerSlice"
    );
}

Outcome CoreAudioIOEngine::installInputCallback() {
    if (!configuration.enableInput) return Done{};
    allocateInputBuffers();
    const AURenderCallbackStruct callback{
        [](void* context, AudioUnitRenderActionFlags& flags, const AudioTimeStamp& time, std::uint32_t,
           std::uint32_t frameCount, AudioBufferList*) noexcept {
            return static_cast<CoreAudioIOEngine*>(context)->captureCycle(flags, time, frameCount);
        },
        this};
    return setUnitProperty(
        kAudioOutputUnitProperty_SetInputCallback, kAudioUnitScope_Global, outputElement, callback,
        "SetInputCallback"
    );
}

Outcome CoreAudioIOEngine::installRenderCallback() {
    outputChannelPointers.resize(static_cast<std::size_t>(configuration.outputChannelCount));
    const AURenderCallbackStruct callback{
        [](void* context, AudioUnitRenderActionFlags&, const AudioTimeStamp&, std::uint32_t,
           std::uint32_t frameCount, AudioBufferList* buffers) noexcept {
            if (buffers != nullptr)
                static_cast<CoreAudioIOEngine*>(context)->renderCycle(frameCount, *buffers);
            return noErr;
        },
        this};
    return setUnitProperty(
        kAudioUnitProperty_SetRenderCallback, kAudioUnitScope_Input, outputElement, callback,
        "SetRenderCallback"
    );
}

Outcome CoreAudioIOEngine::initialize() {
    return deviceOutcome(hardware.AudioUnitInitialize(audioUnit), "AudioUnitInitialize");
}

template <class Value>
Outcome CoreAudioIOEngine::setUnitProperty(
    std::uint32_t property, std::uint32_t scope, std::uint32_t element, const Value& value, const char* what
) {
    return outcome(
        hardware.AudioUnitSetProperty(audioUnit, property, scope, element, platform::bytesOf(value)), what
    );
}

void CoreAudioIOEngine::allocateInputBuffers() {
    const auto channelCount = static_cast<std::size_t>(configuration.inputChannelCount);
    auto& [samples, buffers] = inputBufferList.emplace();
    samples.reshape(channelCount, effectiveFrameCount);
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        buffers.push_back(
            {.mNumberChannels = 1,
             .mDataByteSize = static_cast<std::uint32_t>(effectiveFrameCount * sizeof(float)),
             .mData = samples[channel].data()}
        );
    inputChannelPointers.resize(channelCount);
}

Outcome CoreAudioIOEngine::start() {
    if (audioUnit == nullptr) return EngineError::osStatus(kAudio_ParamError, "start (not set up)");
    return deviceOutcome(hardware.AudioOutputUnitStart(audioUnit), "AudioOutputUnitStart");
}

bool CoreAudioIOEngine::stop() {
    if (audioUnit == nullptr || hardware.AudioOutputUnitStop(audioUnit) != kAudioUnitErr_CallbackAbandoned)
        return true;
    bufferSizeWatch.reset();
    return false;
}

Outcome CoreAudioIOEngine::deviceOutcome(OSStatus status, const char* what) const {
    if (status == noErr) return Done{};
    const auto reason = readUnitProperty<StringRef>(kAudioOutputUnitProperty_FailureReason);
    return EngineError::osStatus(status, what, reason == nullptr ? std::string() : *reason);
}

template <class Value>
Value CoreAudioIOEngine::readUnitProperty(std::uint32_t property) const {
    Value value{};
    if (audioUnit == nullptr) return value;
    const std::span<std::byte> bytes = platform::writableBytesOf(value);
    const PropertySize read =
        hardware.AudioUnitGetProperty(audioUnit, property, kAudioUnitScope_Global, outputElement, bytes);
    return read.status == noErr && read.size == bytes.size() ? value : Value{};
}

std::uint32_t CoreAudioIOEngine::xrunCount() const {
    return readUnitProperty<std::uint32_t>(kAudioOutputUnitProperty_XRunCount);
}

std::int32_t CoreAudioIOEngine::realtimePriority() const {
    return readUnitProperty<std::int32_t>(kAudioOutputUnitProperty_RealtimePriority);
}

void CoreAudioIOEngine::teardown() {
    bufferSizeWatch.reset();
    if (audioUnit != nullptr) {
        hardware.AudioUnitUninitialize(audioUnit);
        hardware.AudioComponentInstanceDispose(audioUnit);
        audioUnit = nullptr;
    }
    inputBufferList.reset();
}

OSStatus CoreAudioIOEngine::captureCycle(
    AudioUnitRenderActionFlags& flags, const AudioTimeStamp& time, std::uint32_t frameCount
) noexcept {
    if (audioUnit == nullptr || !inputBufferList) return noErr;
    const std::span<AudioBuffer> buffers = inputBufferList->buffers;
    for (AudioBuffer& buffer : buffers)
        buffer.mDataByteSize = static_cast<std::uint32_t>(frameCount * sizeof(float));
    AudioBufferList list{buffers};
    const OSStatus status = hardware.AudioUnitRender(audioUnit, flags, time, inputElement, frameCount, list);
    if (status != noErr) return status;

    if (inputHandler) {
        for (std::size_t channel = 0; channel < buffers.size(); ++channel)
            inputChannelPointers[channel] = {static_cast<const float*>(buffers[channel].mData), frameCount};
        inputHandler(inputChannelPointers, frameCount);
    }
    return noErr;
}

void CoreAudioIOEngine::renderCycle(std::uint32_t frameCount, AudioBufferList& buffers) noexcept {
    if (!outputProvider) {
        for (const AudioBuffer& buffer : buffers.mBuffers)
            std::memset(buffer.mData, 0, buffer.mDataByteSize);
        return;
    }
    if (outputChannelPointers.size() != buffers.mBuffers.size())
        outputChannelPointers.resize(buffers.mBuffers.size());
    for (std::size_t channel = 0; channel < outputChannelPointers.size(); ++channel)
        outputChannelPointers[channel] = {static_cast<float*>(buffers.mBuffers[channel].mData), frameCount};
    outputProvider(outputChannelPointers, frameCount);
}

} // namespace orvane::audio
