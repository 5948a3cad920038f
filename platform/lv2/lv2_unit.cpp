#include "platform/lv2/lv2_unit.h"

#include "platform/lv2/full_state.h"
#include "platform/lv2/host_services.h"
#include "platform/lv2/lv2_editor.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <new>
#include <utility>

namespace orvane::platform::lv2 {

namespace {

constexpr std::uint32_t byteSize(std::uint32_t frameCount) noexcept {
    return frameCount * static_cast<std::uint32_t>(sizeof(float));
}

/// The largest valid sample (+36 dBFS); anything louder comes from an unstable filter.
constexpr float loudestOutput = 64.0F;

/// Whether every sample is finite and within range.
ORVANE_REALTIME bool isValid(const float* samples, std::uint32_t frameCount) noexcept {
    bool isWithin = true;
    for (std::uint32_t i = 0; i < frameCount; ++i)
        isWithin &= std::abs(samples[i]) <= loudestOutput;
    return isWithin;
}

/// The longest plausible latency, in frames: 87 s at 48 kHz.
constexpr float longestLatency = 4194304.0F;

/// Converts a reported latency to frames; 0 if it is implausible.
ORVANE_REALTIME std::uint32_t frameCountOf(float reported) noexcept {
    return reported >= 0.0F && reported <= longestLatency ? static_cast<std::uint32_t>(reported) : 0;
}

/// The channel count of a bus; one that no format has if the plugin cannot be hosted.
std::uint32_t channelsOfBus(const MainAudioPorts& audio, const std::vector<std::uint32_t>& ports) {
    return audio.channelCount().value_or(static_cast<std::uint32_t>(ports.size()));
}

} // namespace

Lv2Unit::Lv2Unit(
    std::shared_ptr<const PluginDescription> pluginDescription, std::shared_ptr<HostServices> hostServices,
    const InstanceSettings& settings, PluginInstance::Owner pluginInstance
)
    : description(std::move(pluginDescription)),
      services(std::move(hostServices)),
      instance(std::move(pluginInstance)),
      maximumFrames(settings.maximumFrames),
      input(
          fmt::format("The input of \"{}\"", description->name),
          channelsOfBus(description->audio, description->audio.inputs), settings.sampleRate,
          [this] { return hasRenderResources(); }
      ),
      output(
          fmt::format("The output of \"{}\"", description->name),
          channelsOfBus(description->audio, description->audio.outputs), settings.sampleRate,
          [this] { return hasRenderResources(); }
      ) {
    for (const ControlPort& control : description->controls)
        ownParameters.push_back(std::make_unique<Lv2Parameter>(control, settings.sampleRate));
    for (const auto& parameter : ownParameters)
        parameterList.push_back(parameter.get());
}

void Lv2Unit::setMaximumFramesToRender(std::uint32_t frameCount) {
    if (!hasRenderResources()) maximumFrames = frameCount;
}

Result<Done> Lv2Unit::allocateRenderResources() {
    if (hasRenderResources()) return Done{};
    const std::optional<std::uint32_t> channelCount = description->audio.channelCount();
    if (!channelCount)
        return Error{fmt::format("\"{}\" can be used neither in mono nor in stereo.", description->name)};
    const double sampleRate = input.format().sampleRate;
    if (sampleRate != output.format().sampleRate)
        return Error{fmt::format("\"{}\" cannot run at two sample rates at once.", description->name)};
    if (instance->settings().sampleRate != sampleRate || instance->settings().maximumFrames < maximumFrames)
        if (auto made = makeInstanceFor(sampleRate); !made) return made;

    inputBlocks.reshape(*channelCount, maximumFrames);
    outputBlocks.reshape(*channelCount, maximumFrames);
    inputBuffers.resize(*channelCount);
    inputs.resize(*channelCount);
    outputs.resize(*channelCount);
    gate.open();
    return Done{};
}

Result<Done> Lv2Unit::makeInstanceFor(double sampleRate) try {
    auto made = PluginInstance::make(description, services, {sampleRate, maximumFrames});
    if (!made) return made.error();
    if (const auto state = instance->state(); !state.empty())
        if (const auto restored = made.value()->restore(state); !restored)
            services->log.post(LogLevel::error, logCategory, {restored.error().description});
    instance = std::move(made).value();
    for (const auto& parameter : ownParameters)
        parameter->setSampleRate(sampleRate);
    return Done{};
} catch (const std::bad_alloc&) {
    throw;
} catch (...) {
    return Error{
        fmt::format("\"{}\" failed while it was being set up for {:.0f} Hz.", description->name, sampleRate)};
}

void Lv2Unit::deallocateRenderResources() {
    if (hasRenderResources()) gate.shut(RenderGate::State::closed);
}

AURenderBlock Lv2Unit::renderBlock() {
    return [this](
               AudioUnitRenderActionFlags&, const AudioTimeStamp& now, std::uint32_t frameCount,
               std::int64_t bus, AudioBufferList& list, const AURenderPullInputBlock& pull
           ) {
        const RenderGate::State permitted = gate.enter();
        const OSStatus status = render(permitted, now, frameCount, bus, list, pull);
        gate.leave();
        return status;
    };
}

OSStatus Lv2Unit::render(
    RenderGate::State permitted, const AudioTimeStamp& now, std::uint32_t frameCount,
    std::int64_t outputBusNumber, AudioBufferList& list, const AURenderPullInputBlock& pull
) noexcept {
    if (permitted == RenderGate::State::closed) return kAudioUnitErr_Uninitialized;
    if (outputBusNumber != 0) return kAudioUnitErr_InvalidElement;
    if (frameCount > maximumFrames) return kAudioUnitErr_TooManyFramesToProcess;
    if (frameCount == 0) return noErr;
    if (const OSStatus status = pullInput(now, frameCount, pull); status != noErr) return status;
    if (!takeOutputs(list, frameCount)) return kAudio_ParamError;
    if (permitted == RenderGate::State::paused) {
        passThrough(frameCount);
        return noErr;
    }
    return runPlugin(frameCount);
}

OSStatus Lv2Unit::pullInput(
    const AudioTimeStamp& now, std::uint32_t frameCount, const AURenderPullInputBlock& pull
) noexcept {
    if (!pull) return kAudioUnitErr_NoConnection;
    for (std::size_t c = 0; c < inputBuffers.size(); ++c)
        inputBuffers[c] = {1, byteSize(frameCount), inputBlocks[c].data()};
    AudioBufferList list{inputBuffers};
    AudioUnitRenderActionFlags flags = 0;
    if (const OSStatus status = pull(flags, now, frameCount, 0, list); status != noErr) return status;
    for (std::size_t c = 0; c < inputs.size(); ++c) {
        if (inputBuffers[c].mData == nullptr) return kAudioUnitErr_NoConnection;
        inputs[c] = static_cast<const float*>(inputBuffers[c].mData);
    }
    return noErr;
}

/// Gives an output that has no buffer in the list, or an input's, a buffer of the unit's: plugins need not
/// support in-place processing.
bool Lv2Unit::takeOutputs(AudioBufferList& list, std::uint32_t frameCount) noexcept {
    if (list.mBuffers.size() != outputs.size()) return false;
    for (std::size_t c = 0; c < outputs.size(); ++c) {
        AudioBuffer& buffer = list.mBuffers[c];
        if (buffer.mData == nullptr || std::ranges::find(inputs, buffer.mData) != inputs.end())
            buffer = {1, byteSize(frameCount), outputBlocks[c].data()};
        if (buffer.mDataByteSize < byteSize(frameCount)) return false;
        outputs[c] = static_cast<float*>(buffer.mData);
    }
    return true;
}

void Lv2Unit::passThrough(std::uint32_t frameCount) noexcept {
    for (std::size_t c = 0; c < outputs.size(); ++c)
        std::copy_n(inputs[c], frameCount, outputs[c]);
}

/// Copies the output of a plugin with a single output to every channel of the format.
void Lv2Unit::spreadOutput(std::uint32_t frameCount) noexcept {
    for (std::size_t c = description->audio.outputs.size(); c < outputs.size(); ++c)
        std::copy_n(outputs[0], frameCount, outputs[c]);
}

OSStatus Lv2Unit::runPlugin(std::uint32_t frameCount) noexcept {
    const std::span<float> controls = instance->controlValues();
    for (const auto& parameter : ownParameters)
        if (!parameter->info().isReadOnly) controls[parameter->port()] = parameter->value();
    const auto pluginInputs = std::span(inputs).first(description->audio.inputs.size());
    const auto pluginOutputs = std::span(outputs).first(description->audio.outputs.size());
    if (!instance->run(pluginInputs, pluginOutputs, frameCount, messages.load()))
        return kAudioUnitErr_CannotDoInCurrentContext;
    spreadOutput(frameCount);
    takeControlOutputs(controls);
    const bool isAllSound =
        std::ranges::all_of(outputs, [&](const float* samples) { return isValid(samples, frameCount); });
    return isAllSound ? noErr : kAudioUnitErr_CannotDoInCurrentContext;
}

void Lv2Unit::takeControlOutputs(std::span<const float> controls) noexcept {
    for (const auto& parameter : ownParameters)
        if (parameter->info().isReadOnly) parameter->setOutput(controls[parameter->port()]);
    if (description->latencyPort) latency.store(frameCountOf(controls[*description->latencyPort]));
}

std::optional<PropertyList::Dictionary> Lv2Unit::fullState() const {
    return makeFullState(
        description->uri, controlsOf(ownParameters), instance ? instance->state() : PropertyList::Dictionary{}
    );
}

Result<Done> Lv2Unit::setFullState(const PropertyList::Dictionary& state) {
    if (!isStateOf(description->uri, state)) return Done{};
    restoreControls(state, ownParameters);
    const auto* const pluginState = pluginStateIn(state);
    return pluginState == nullptr ? Done{} : restorePluginState(*pluginState);
}

Result<Done> Lv2Unit::restorePluginState(const PropertyList::Dictionary& state) {
    if (!instance) return Done{};
    const bool mustPause = hasRenderResources() && !description->restoresWhileRunning;
    return instance->restore(state, mustPause ? &gate : nullptr);
}

void Lv2Unit::requestViewController(std::function<void(std::shared_ptr<AUViewController>)> completion) {
    const bool hasSomethingToShow =
        description->editor || std::ranges::any_of(ownParameters, [](const auto& parameter) {
            return !parameter->info().isHidden;
        });
    completion(hasSomethingToShow ? std::make_shared<AUViewController>(shared_from_this()) : nullptr);
}

std::unique_ptr<NativeEditor> Lv2Unit::openNativeEditor(NativeEditorParent& parent) {
    if (!description->editor) return nullptr;
    if (!editorMessages) {
        editorMessages = std::make_unique<EditorMessages>();
        messages.store(editorMessages.get());
    }
    auto opened = Lv2Editor::open(
        {shared_from_this(), *description, *services, ownParameters, *editorMessages}, parent
    );
    if (opened) return std::move(opened).value();
    services->log.post(
        LogLevel::error, logCategory,
        {"The editor of \"", description->name, "\" cannot be opened: ", opened.error().description, "."}
    );
    return nullptr;
}

} // namespace orvane::platform::lv2
