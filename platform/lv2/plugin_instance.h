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

/// How an instance is run.
struct InstanceSettings {
    /// In Hz.
    double sampleRate = 48000.0;
    /// The longest block, in frames.
    std::uint32_t maximumFrames = 4096;
};

/// An active plugin with all ports connected except those of the main signal: controls to values, event
/// inputs to the editors' messages, and ports beside the signal to silence. Owned by its unit. Control
/// thread, unless noted.
class PluginInstance final {
  public:
    /// Destroys an instance without waiting for its plugin's current work: destruction then follows that
    /// work, on the worker's thread.
    struct End {
        void operator()(PluginInstance* instance) const;
    };
    using Owner = std::unique_ptr<PluginInstance, End>;

    /// Loads, instantiates and activates the plugin. Any thread; slow.
    static Result<Owner> make(
        const std::shared_ptr<const PluginDescription>& description, std::shared_ptr<HostServices> services,
        const InstanceSettings& settings
    );
    /// Deactivates the plugin and cleans it up. Any thread; slow.
    ~PluginInstance();
    PluginInstance(const PluginInstance&) = delete;
    PluginInstance& operator=(const PluginInstance&) = delete;

    [[nodiscard]] const InstanceSettings& settings() const { return madeFor; }

    /// The value of each control port, by port index. Render thread.
    [[nodiscard]] std::span<float> controlValues() noexcept { return controls; }

    /// Runs the plugin for a block: one buffer of `frameCount` samples for each main audio port. `messages`
    /// connects the plugin to its open editors; null before the first was opened. Returns false if the plugin
    /// throws, which is logged, and on every later call. Render thread, real-time safe if the plugin is.
    ORVANE_REALTIME bool
    run(std::span<const float* const> inputs, std::span<float* const> outputs, std::uint32_t frameCount,
        EditorMessages* messages) noexcept;

    /// The state that the plugin's state interface saves. May be called while the plugin runs.
    [[nodiscard]] PropertyList::Dictionary state() const;
    /// Restores a state once the plugin has finished its current work. `gate` belongs to the unit that runs
    /// the plugin and is paused meanwhile, unless the description allows restoring while running; null if
    /// nothing runs it. If the plugin does not finish its work in time, the state is not restored, which is
    /// logged. Fails if the plugin may not open a file that the state names; the rest of the state is
    /// restored then.
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
    /// Mutable for `state`, which does not change it.
    mutable StatePaths paths;
    HostFeatures features;
    LV2_Handle handle = nullptr;
    const LV2_State_Interface* stateInterface = nullptr;
    bool isActive = false;
    /// run() has thrown.
    bool isBroken = false;

    /// By port index.
    std::vector<float> controls;
    AtomPorts atomPorts;
    /// One block for each audio and CV port beside the main signal.
    dsp::ChannelBlocks<float> sideBlocks;
};

} // namespace orvane::platform::lv2
