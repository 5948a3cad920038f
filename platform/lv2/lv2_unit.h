#pragma once

#include "dsp/channel_blocks.h"
#include "dsp/realtime.h"
#include "platform/effects/audio_unit_host.h"
#include "platform/lv2/editor_messages.h"
#include "platform/lv2/host_services.h"
#include "platform/lv2/lv2_bus.h"
#include "platform/lv2/lv2_parameter.h"
#include "platform/lv2/plugin_description.h"
#include "platform/lv2/plugin_instance.h"
#include "platform/lv2/render_gate.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace orvane::platform::lv2 {

/// A hosted LV2 plugin. It has an instance from the start; allocating render resources for another rate or
/// for longer blocks replaces the instance, and its settings are carried over. A plugin without one or two
/// audio ports on each side has no instance, and its busses refuse every format.
class Lv2Unit final : public AUAudioUnit, public std::enable_shared_from_this<Lv2Unit> {
  public:
    /// `pluginInstance`: made with `settings`; null if the plugin supports no format.
    Lv2Unit(
        std::shared_ptr<const PluginDescription> pluginDescription,
        std::shared_ptr<HostServices> hostServices, const InstanceSettings& settings,
        PluginInstance::Owner pluginInstance
    );
    ~Lv2Unit() override { Lv2Unit::deallocateRenderResources(); }

    std::span<AUAudioUnitBus* const> inputBusses() override { return {&inputBus, 1}; }
    std::span<AUAudioUnitBus* const> outputBusses() override { return {&outputBus, 1}; }
    void setMaximumFramesToRender(std::uint32_t frameCount) override;
    Result<Done> allocateRenderResources() override;
    void deallocateRenderResources() override;
    AURenderBlock renderBlock() override;
    [[nodiscard]] std::uint32_t latencyFrames() const noexcept override { return latency.load(); }
    [[nodiscard]] std::optional<PropertyList::Dictionary> fullState() const override;
    Result<Done> setFullState(const PropertyList::Dictionary& state) override;
    std::span<AUParameter* const> parameters() override { return parameterList; }
    void requestViewController(std::function<void(std::shared_ptr<AUViewController>)> completion) override;
    std::unique_ptr<NativeEditor> openNativeEditor(NativeEditorParent& parent) override;

  private:
    [[nodiscard]] bool hasRenderResources() const { return gate.current() != RenderGate::State::closed; }
    Result<Done> makeInstanceFor(double sampleRate);
    Result<Done> restorePluginState(const PropertyList::Dictionary& state);

    ORVANE_REALTIME OSStatus render(
        RenderGate::State permitted, const AudioTimeStamp& now, std::uint32_t frameCount,
        std::int64_t outputBusNumber, AudioBufferList& list, const AURenderPullInputBlock& pull
    ) noexcept;
    ORVANE_REALTIME OSStatus pullInput(
        const AudioTimeStamp& now, std::uint32_t frameCount, const AURenderPullInputBlock& pull
    ) noexcept;
    ORVANE_REALTIME bool takeOutputs(AudioBufferList& list, std::uint32_t frameCount) noexcept;
    ORVANE_REALTIME void passThrough(std::uint32_t frameCount) noexcept;
    ORVANE_REALTIME void spreadOutput(std::uint32_t frameCount) noexcept;
    ORVANE_REALTIME OSStatus runPlugin(std::uint32_t frameCount) noexcept;
    ORVANE_REALTIME void takeControlOutputs(std::span<const float> controls) noexcept;

    std::shared_ptr<const PluginDescription> description;
    std::shared_ptr<HostServices> services;
    PluginInstance::Owner instance;
    std::uint32_t maximumFrames;

    Lv2Bus input;
    Lv2Bus output;
    AUAudioUnitBus* inputBus = &input;
    AUAudioUnitBus* outputBus = &output;

    std::vector<std::unique_ptr<Lv2Parameter>> ownParameters;
    std::vector<AUParameter*> parameterList;

    /// Created when the first editor opens; the render thread reads `messages`.
    std::unique_ptr<EditorMessages> editorMessages;
    std::atomic<EditorMessages*> messages = nullptr;

    std::atomic<std::uint32_t> latency = 0;
    RenderGate gate;
    /// One block per channel of the format, allocated with the render resources. Used by the render thread
    /// only.
    dsp::ChannelBlocks<float> inputBlocks;
    dsp::ChannelBlocks<float> outputBlocks;
    std::vector<AudioBuffer> inputBuffers;
    std::vector<const float*> inputs;
    std::vector<float*> outputs;
};

} // namespace orvane::platform::lv2
