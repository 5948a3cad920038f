#include "audio/core_audio_io_engine.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace orvane::audio {

using namespace platform;

namespace {

constexpr AudioComponentDescription outputUnitDescription{
    .componentType = fourCharCode("auou"),
    .componentSubType = fourCharCode("ahal"),
    .componentManufacturer = fourCharCode("appl")};

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
    bufferSizeListener.reset();
    if (audioUnit) audioUnit->AudioUnitUninitialize();
    audioUnit.reset();
}

Outcome CoreAudioIOEngine::setup() {
    if (Outcome made = createUnit(); !made) return made;
    const bool enableInput = configuration.enableInput;
    Outcome chosen = set({
        {enableInput ? "EnableIO input" : "EnableIO input (disable)",
         EnableIO{AudioScope::input, enableInput}},
        {"EnableIO output", EnableIO{AudioScope::output, true}},
        {"CurrentDevice", CurrentDevice{configuration.deviceID}},
    });
    if (!chosen) return chosen;
    agreeOnBufferSize();
    if (Outcome done = setFormatsAndCallbacks(); !done) return done;
    return deviceOutcome(audioUnit->AudioUnitInitialize(), "AudioUnitInitialize");
}

Outcome CoreAudioIOEngine::createUnit() {
    const AudioComponent component = hardware.AudioComponentFindNext(outputUnitDescription);
    if (component == 0) return EngineError::componentNotFound();
    auto made = hardware.AudioComponentInstanceNew(component);
    if (!made) return EngineError::osStatus(made.error(), "AudioComponentInstanceNew");
    audioUnit = std::move(made).value();
    if (!audioUnit) return EngineError::osStatus(noErr, "AudioComponentInstanceNew");
    return Done{};
}

void CoreAudioIOEngine::agreeOnBufferSize() {
    const AudioObjectID device = configuration.deviceID;
    const std::uint32_t requested = configuration.framesPerSlice;
    BufferSizeAgreement agreement = negotiateBufferSize(hardware, device, requested);
    effectiveFrameCount = agreement.frameCount;
    negotiationWarning = std::move(agreement.warning);
    bufferSizeListener = watchBufferSize(
        hardware, device, requested, effectiveFrameCount, onDeviceBufferSizeChangedExternally
    );
}

Outcome CoreAudioIOEngine::setFormatsAndCallbacks() {
    const auto format = [this](AudioScope scope, std::int64_t channelCount) {
        return StreamFormat{scope, configuration.sampleRate, static_cast<std::uint32_t>(channelCount)};
    };
    const auto inputCallback = [](void* engine, std::uint32_t frameCount) noexcept {
        return static_cast<CoreAudioIOEngine*>(engine)->captureCycle(frameCount);
    };
    const auto renderCallback = [](void* engine, std::span<const std::span<float>> outputs,
                                   std::size_t frameCount) noexcept {
        static_cast<CoreAudioIOEngine*>(engine)->renderCycle(outputs, frameCount);
        return noErr;
    };
    const bool enableInput = configuration.enableInput;
    if (enableInput) allocateInputBuffers();
    return set({
        {"StreamFormat input", format(AudioScope::input, configuration.inputChannelCount), enableInput},
        {"StreamFormat output", format(AudioScope::output, configuration.outputChannelCount)},
        {"MaximumFramesPerSlice", MaximumFramesPerSlice{effectiveFrameCount}},
        {"SetInputCallback", SetInputCallback{inputCallback, this}, enableInput},
        {"SetRenderCallback", SetRenderCallback{renderCallback, this}},
    });
}

Outcome CoreAudioIOEngine::set(std::initializer_list<Step> steps) {
    for (const auto& [what, property, applies] : steps) {
        const OSStatus status = applies ? audioUnit->AudioUnitSetProperty(property) : noErr;
        if (status != noErr) return EngineError::osStatus(status, what);
    }
    return Done{};
}

void CoreAudioIOEngine::allocateInputBuffers() {
    const auto channelCount = static_cast<std::size_t>(configuration.inputChannelCount);
    inputSamples.reshape(channelCount, effectiveFrameCount);
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        inputBuffers.push_back(inputSamples[channel]);
    inputChannelPointers.resize(channelCount);
}

Outcome CoreAudioIOEngine::start() {
    if (!audioUnit) return EngineError::osStatus(kAudio_ParamError, "start (not set up)");
    return deviceOutcome(audioUnit->AudioOutputUnitStart(), "AudioOutputUnitStart");
}

bool CoreAudioIOEngine::stop() {
    if (!audioUnit || audioUnit->AudioOutputUnitStop() != kAudioUnitErr_CallbackAbandoned) return true;
    bufferSizeListener.reset();
    return false;
}

Outcome CoreAudioIOEngine::deviceOutcome(OSStatus status, const char* what) const {
    if (status == noErr) return Done{};
    return EngineError::osStatus(status, what, audioUnit->failureReason());
}

std::uint32_t CoreAudioIOEngine::xrunCount() const {
    return audioUnit ? audioUnit->xrunCount() : 0;
}

int CoreAudioIOEngine::realtimePriority() const {
    return audioUnit ? audioUnit->realtimePriority() : 0;
}

OSStatus CoreAudioIOEngine::captureCycle(std::uint32_t frameCount) noexcept {
    const OSStatus status = audioUnit->AudioUnitRender(inputBuffers, frameCount);
    if (status != noErr || !inputHandler) return status;
    for (std::size_t channel = 0; channel < inputBuffers.size(); ++channel)
        inputChannelPointers[channel] = inputBuffers[channel].first(frameCount);
    inputHandler(inputChannelPointers, frameCount);
    return noErr;
}

void CoreAudioIOEngine::renderCycle(
    std::span<const std::span<float>> outputs, std::size_t frameCount
) noexcept {
    if (outputProvider)
        outputProvider(outputs, frameCount);
    else
        for (const std::span<float> output : outputs)
            std::ranges::fill(output, 0.0F);
}

} // namespace orvane::audio
