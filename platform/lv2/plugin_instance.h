#pragma once

#include "dsp/channel_blocks.h"
#include "dsp/realtime.h"
#include "platform/base/result.h"
#include "platform/files/property_list.h"
#include "platform/lv2/atom_ports.h"
#include "platform/lv2/editor_messages.h"
#include "platform/lv2/host_features.h"
#include "platform/lv2/host_services.h"
#include "platform/lv2/plugin_description.h"
#include "platform/lv2/plugin_library.h"
#include "platform/lv2/render_gate.h"
#include "platform/lv2/state_paths.h"
#include "platform/lv2/worker.h"

#include <lv2/core/lv2.h>
#include <lv2/state/state.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace orvane::platform::lv2 {

/// How an instance is to run.
struct InstanceSettings {
    /// In Hz.
    double sampleRate = 48000.0;
    /// The longest block, in frames.
    std::uint32_t maximumFrames = 4096;
};

/// An active plugin with every port but those of the main signal connected: controls to values, event
/// inputs to sequences of what editors send, what is beside the signal to silence. Owned by its unit. Control
/// thread, but for what says otherwise.
class PluginInstance final {
  public:
    /// Ends an instance without waiting for work that its plugin is at: it then ends after that work, on the
    /// thread of that work.
    struct End {
        void operator()(PluginInstance* instance) const;
    };
    using Owner = std::unique_ptr<PluginInstance, End>;

    /// Loads, instantiates and activates the plugin, or says why not. Any thread; takes its time.
    static Result<Owner> make(
        const std::shared_ptr<const PluginDescription>& description, std::shared_ptr<HostServices> services,
        const InstanceSettings& settings
    );
    /// Deactivates the plugin and cleans it up. Any thread; takes its time.
    ~PluginInstance();
    PluginInstance(const PluginInstance&) = delete;
    PluginInstance& operator=(const PluginInstance&) = delete;

    [[nodiscard]] const InstanceSettings& settings() const { return madeFor; }

    /// The value of each control port, by port index. Render thread.
    [[nodiscard]] std::span<float> controlValues() noexcept { return controls; }

    /// Runs the plugin from the inputs into the outputs, one buffer of `frameCount` samples for each main
    /// audio port; `messages`: with the plugin's open editors, null where there were none yet. False where
    /// the plugin throws, which is logged, and ever after. Render thread, real-time safe where the plugin is.
    ORVANE_REALTIME bool
    run(std::span<const float* const> inputs, std::span<float* const> outputs, std::uint32_t frameCount,
        EditorMessages* messages) noexcept;

    /// What the plugin's state interface saves. Also while it runs.
    [[nodiscard]] PropertyList::Dictionary state() const;
    /// Lets the plugin take a state, once it has done the work that it is at. `gate`: of the unit that runs
    /// it, to be paused meanwhile unless the plugin's description says otherwise; null while it is not run.
    /// A plugin that does not finish its work does not get the state, which is logged. Fails if the plugin
    /// was not given a file that the state names; it takes the rest of the state then.
    Result<Done> restore(const PropertyList::Dictionary& state, RenderGate* gate = nullptr);

  private:
    PluginInstance(
        std::shared_ptr<const PluginDescription> pluginDescription,
        std::shared_ptr<HostServices> hostServices, PluginLibrary pluginLibrary,
        const InstanceSettings& settings
    );

    bool begin();
    void connectPorts();
    void activate();
    void deactivate();
    ORVANE_REALTIME void report(std::string_view what) const noexcept;

    std::shared_ptr<const PluginDescription> description;
    std::shared_ptr<HostServices> services;
    PluginLibrary library;
    InstanceSettings madeFor;
    Worker worker;
    /// Also for `state`, which changes nothing.
    mutable StatePaths paths;
    HostFeatures features;
    LV2_Handle handle = nullptr;
    const LV2_State_Interface* stateInterface = nullptr;
    bool isActive = false;
    /// It has thrown where it runs.
    bool isBroken = false;

    /// By port index.
    std::vector<float> controls;
    AtomPorts atomPorts;
    /// One block for each audio and CV port beside the signal.
    dsp::ChannelBlocks<float> sideBlocks;
};

} // namespace orvane::platform::lv2
