#include "platform/lv2/plugin_instance.h"

#include "platform/lv2/host_features.h"
#include "platform/lv2/host_services.h"
#include "platform/lv2/plugin_state.h"
#include "platform/lv2/shared_library.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <mutex>
#include <utility>

namespace orvane::platform::lv2 {

namespace {

/// The plugin's extension interface for a URI; null if it has none.
template <class Interface>
const Interface* extension(const LV2_Descriptor& descriptor, const char* uri) {
    if (descriptor.extension_data == nullptr) return nullptr;
    return static_cast<const Interface*>(descriptor.extension_data(uri));
}

std::size_t sideBlockCount(const PluginDescription& description) {
    const auto count = std::ranges::count_if(description.roles, [](const PortRole& role) {
        return role.kind == PortKind::audio || role.kind == PortKind::cv;
    });
    return static_cast<std::size_t>(count) - description.audio.inputs.size()
           - description.audio.outputs.size();
}

bool contains(const std::vector<std::uint32_t>& ports, std::uint32_t port) {
    return std::ranges::find(ports, port) != ports.end();
}

} // namespace

Result<PluginInstance::Owner> PluginInstance::make(
    const std::shared_ptr<const PluginDescription>& description, std::shared_ptr<HostServices> services,
    const InstanceSettings& settings
) {
    if (auto error = whyNotInstantiable(*description)) return *std::move(error);
    auto library = PluginLibrary::load(*description);
    if (!library) return library.error();
    Owner instance(new PluginInstance(description, std::move(services), std::move(library).value(), settings)
    );
    if (!instance->begin())
        return Error{
            fmt::format("\"{}\" could not be started at {:.0f} Hz.", description->name, settings.sampleRate)};
    return instance;
}

PluginInstance::PluginInstance(
    std::shared_ptr<const PluginDescription> pluginDescription, std::shared_ptr<HostServices> hostServices,
    PluginLibrary pluginLibrary, const InstanceSettings& settings
)
    : description(std::move(pluginDescription)),
      services(std::move(hostServices)),
      library(std::move(pluginLibrary)),
      madeFor(settings),
      worker(services->renderMode),
      paths(description->name),
      features(
          *services, description->name, worker.schedule(), paths, madeFor.sampleRate, madeFor.maximumFrames
      ),
      controls(description->heldValues),
      atomPorts(*description, services->urids),
      sideBlocks(sideBlockCount(*description), madeFor.maximumFrames) {
    if (services->renderMode == RenderMode::offline)
        for (const std::uint32_t port : description->freeWheelingPorts)
            controls[port] = 1.0F;
}

void PluginInstance::End::operator()(PluginInstance* instance) const {
    LateEnds& lateEnds = instance->services->lateEnds;
    lateEnds.expect();
    const bool isIdle = instance->worker.stop([instance] {
        const auto services = instance->services;
        services->lateEnds.run([instance] { delete instance; });
    });
    if (!isIdle) return;
    lateEnds.forget();
    delete instance;
}

PluginInstance::~PluginInstance() {
    if (handle == nullptr) return;
    const std::scoped_lock lock(services->settingUp);
    // Many plugins' cleanup() relies on what activate() allocates.
    if (!isActive) activate();
    deactivate();
    if (library.descriptor().cleanup == nullptr) return;
    if (!callPlugin([this] { library.descriptor().cleanup(handle); }))
        report("failed while it was being closed.");
}

bool PluginInstance::begin() {
    const LV2_Descriptor& descriptor = library.descriptor();
    {
        const std::scoped_lock lock(services->settingUp);
        const Worker::ControlCall call(worker);
        callPlugin([&] {
            handle = descriptor.instantiate(
                &descriptor, madeFor.sampleRate, description->bundlePath.c_str(), features.list()
            );
        });
        if (handle == nullptr) return false;
        connectPorts();
        activate();
    }
    stateInterface = extension<LV2_State_Interface>(descriptor, LV2_STATE__interface);
    if (const auto* const work = extension<LV2_Worker_Interface>(descriptor, LV2_WORKER__interface))
        worker.start(handle, *work, [this] { report("failed in its background work."); });
    return true;
}

void PluginInstance::connectPorts() {
    std::size_t nextSideBlock = 0;
    for (std::uint32_t i = 0; i < description->roles.size(); ++i) {
        const PortRole& role = description->roles[i];
        void* buffer = nullptr;
        if (role.kind == PortKind::control) {
            buffer = &controls[i];
        } else if (role.kind == PortKind::atom) {
            buffer = atomPorts.buffer(i);
        } else if (role.kind == PortKind::audio || role.kind == PortKind::cv) {
            if (contains(description->audio.inputs, i) || contains(description->audio.outputs, i)) continue;
            void* const block = sideBlocks[nextSideBlock++].data();
            if (!role.isOptional) buffer = block;
        }
        library.descriptor().connect_port(handle, i, buffer);
    }
}

void PluginInstance::activate() {
    isActive = true;
    if (library.descriptor().activate == nullptr) return;
    isBroken = !callPlugin([this] { library.descriptor().activate(handle); });
    if (isBroken) report("failed to activate, so it does not run.");
}

void PluginInstance::deactivate() {
    if (library.descriptor().deactivate == nullptr) return;
    if (!callPlugin([this] { library.descriptor().deactivate(handle); })) report("failed to deactivate.");
}

bool PluginInstance::run(
    std::span<const float* const> inputs, std::span<float* const> outputs, std::uint32_t frameCount,
    EditorMessages* messages
) noexcept {
    if (isBroken) return false;
    const LV2_Descriptor& descriptor = library.descriptor();
    atomPorts.clear();
    if (messages != nullptr) atomPorts.receive(*messages);
    const Worker::RenderCall call(worker);
    isBroken = !callPlugin([&] {
        // The interface takes inputs as pointers to non-const; plugins do not write to them.
        for (std::size_t c = 0; c < inputs.size(); ++c)
            descriptor.connect_port(handle, description->audio.inputs[c], const_cast<float*>(inputs[c]));
        for (std::size_t c = 0; c < outputs.size(); ++c)
            descriptor.connect_port(handle, description->audio.outputs[c], outputs[c]);
        descriptor.run(handle, frameCount);
        worker.deliverResponses();
    });
    if (isBroken) report("failed in the middle of a block, so it no longer runs.");
    if (messages != nullptr) atomPorts.send(*messages);
    return !isBroken;
}

PropertyList::Dictionary PluginInstance::state() const {
    if (stateInterface == nullptr) return {};
    const auto pathFeatures = paths.features();
    const LV2_Feature* const offered[] = {&pathFeatures[0], &pathFeatures[1], nullptr};
    SavedState saved = savePluginState(*stateInterface, handle, services->urids, offered);
    if (!saved.isWhole) report("could not save all of its state.");
    return std::move(saved.state);
}

Result<Done> PluginInstance::restore(const PropertyList::Dictionary& state, RenderGate* gate) {
    if (stateInterface == nullptr) return Done{};
    const Worker::ControlCall call(worker);
    if (!call.isAlone()) {
        report("did not restore its state because its background work does not end.");
        return Done{};
    }
    const LV2_Feature schedule{LV2_WORKER__schedule, worker.schedule()};
    const auto pathFeatures = paths.features();
    const LV2_Feature* const offered[] = {&pathFeatures[0], &pathFeatures[1], &schedule, nullptr};
    paths.takeRefusal();
    if (gate != nullptr) gate->shut(RenderGate::State::paused);
    if (!restorePluginState(*stateInterface, handle, services->urids, offered, state, paths))
        report("could not restore all of its state.");
    if (gate != nullptr) gate->open();
    if (auto refusal = paths.takeRefusal()) return *std::move(refusal);
    return Done{};
}

void PluginInstance::report(std::string_view what) const noexcept {
    services->log.post(LogLevel::error, logCategory, {description->name, ": the plugin ", what});
}

} // namespace orvane::platform::lv2
