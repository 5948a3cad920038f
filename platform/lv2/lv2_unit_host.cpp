#include "platform/lv2/lv2_unit_host.h"

#include "platform/base/memory_shortage.h"
#include "platform/lv2/child_output.h"
#include "platform/lv2/host_services.h"
#include "platform/lv2/lv2_unit.h"
#include "platform/lv2/plugin_bundle.h"
#include "platform/lv2/plugin_description.h"
#include "platform/lv2/plugin_instance.h"
#include "platform/lv2/scan_program.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <new>
#include <optional>
#include <string_view>
#include <utility>

namespace orvane::platform::lv2 {

namespace {

bool matches(const AudioComponentDescription& component, const AudioComponentDescription& wanted) {
    const auto fits = [](std::uint32_t field, std::uint32_t asked) { return asked == 0 || field == asked; };
    const std::uint32_t mask = wanted.componentFlagsMask;
    return fits(component.componentType, wanted.componentType)
           && fits(component.componentSubType, wanted.componentSubType)
           && fits(component.componentManufacturer, wanted.componentManufacturer)
           && (component.componentFlags & mask) == (wanted.componentFlags & mask);
}

/// How long the destructor waits for plugins that are still working.
constexpr std::chrono::milliseconds patienceAtEnd{5000};

/// The limits for the process that reads a preset.
constexpr ChildLimits presetLimits{.time = std::chrono::seconds(5)};

Result<PluginDescription> readDescription(const InstalledPlugin& installed) {
    PluginBundle bundle(installed.bundle);
    const LilvPlugin* const plugin = bundle.plugin(installed.uri);
    if (plugin == nullptr)
        return Error{fmt::format("\"{}\" is no longer installed.", installed.component.name)};
    return describe(bundle, plugin);
}

} // namespace

Lv2UnitHost::Lv2UnitHost(
    SystemLog& systemLog, std::string searchPath, std::optional<std::filesystem::path> effectCache,
    RenderMode renderMode
)
    : services(new HostServices{.log = systemLog, .renderMode = renderMode}),
      path(std::move(searchPath)),
      cacheFile(std::move(effectCache)),
      loader([this] { serveRequests(); }) {}

Lv2UnitHost::~Lv2UnitHost() {
    cancelScan();
    {
        const std::scoped_lock lock(work->mutex);
        work->isClosing = true;
    }
    work->changed.notify_one();
    loader.join();
    work->discarded.clear();
    services->lateEnds.close(patienceAtEnd);
    for (const Request& request : work->requests)
        request.refuse(Error{"The effect was not loaded because the program is closing."});
}

std::vector<AVAudioUnitComponent>
Lv2UnitHost::componentsMatchingDescription(const AudioComponentDescription& description) {
    std::vector<AVAudioUnitComponent> components;
    for (const InstalledPlugin& plugin : effects().plugins)
        if (matches(plugin.component.audioComponentDescription, description))
            components.push_back(plugin.component);
    return components;
}

void Lv2UnitHost::expectSampleRate(double sampleRate) {
    if (AVAudioFormat::initStandardFormat(sampleRate, 1)) services->sampleRate.store(sampleRate);
}

void Lv2UnitHost::instantiate(
    const AudioComponentDescription& description, std::uint32_t /*options*/,
    InstantiationCompletion completion
) {
    ask(
        {[this, description, completion] {
             auto made = makeUnitSafely(description);
             if (made)
                 completion(std::move(made).value(), std::nullopt);
             else
                 completion(nullptr, made.error());
         },
         [completion](Error error) { completion(nullptr, std::move(error)); }}
    );
}

std::vector<AUAudioUnitPreset> Lv2UnitHost::factoryPresets(const AudioComponentDescription& description) {
    const auto& [plugins, presets] = effects();
    std::vector<AUAudioUnitPreset> found;
    for (const InstalledPlugin& plugin : plugins) {
        if (!matches(plugin.component.audioComponentDescription, description)) continue;
        const auto own = std::ranges::equal_range(presets, plugin.uri, {}, &InstalledPreset::pluginUri);
        for (const InstalledPreset& preset : own)
            found.push_back({&preset - presets.data(), preset.name, preset.bank});
    }
    return found;
}

void Lv2UnitHost::readFactoryPreset(const AUAudioUnitPreset& preset, const PresetCompletion& completion) {
    ask({[this, preset, completion] { completion(stateOf(preset)); }, completion});
}

Result<PropertyList::Dictionary> Lv2UnitHost::stateOf(const AUAudioUnitPreset& preset) try {
    const auto failure = [&](std::string_view why) {
        return Error{fmt::format("The preset \"{}\" cannot be loaded: {}.", preset.name, why)};
    };
    const auto& presets = effects().presets;
    const auto index = static_cast<std::size_t>(preset.number);
    if (index >= presets.size()) return failure("it is not installed");
    const InstalledPreset& chosen = presets[index];
    const auto bytes = outputOfChild(
        scanProgram(), {presetArgument, chosen.bundle.native(), chosen.uri, chosen.pluginUri}, presetLimits,
        scanStop.get_token()
    );
    if (!bytes) return failure(bytes.error().why);
    auto state = propertyListWithData(bytes.value());
    if (!state) return failure("its description is damaged");
    if (state.value().empty()) return failure("it is no longer installed");
    return state;
} catch (const std::bad_alloc&) {
    return Error{"There is not enough memory to load the preset."};
}

void Lv2UnitHost::ask(Request request) {
    {
        const std::scoped_lock lock(work->mutex);
        work->requests.push_back(std::move(request));
    }
    work->changed.notify_one();
}

const InstalledEffects& Lv2UnitHost::effects() {
    std::call_once(scanned, [this] {
        installed = scanForEffects(
            path, services->log, {.cacheFile = cacheFile, .limits = {}, .stop = scanStop.get_token()}
        );
    });
    return installed;
}

/// Leaves the unit to the loading thread; destroys it on the calling thread if that thread has ended.
void Lv2UnitHost::discard(std::unique_ptr<AUAudioUnit> unit, const std::weak_ptr<Work>& loader) {
    const auto work = loader.lock();
    if (!work) return;
    const std::scoped_lock lock(work->mutex);
    if (work->isClosing) return;
    try {
        work->discarded.push_back(std::move(unit));
    } catch (const std::bad_alloc&) {
        return;
    }
    work->changed.notify_one();
}

void Lv2UnitHost::serveRequests() {
    std::unique_lock lock(work->mutex);
    while (true) {
        work->changed.wait(lock, [this] {
            return work->isClosing || !work->requests.empty() || !work->discarded.empty();
        });
        if (work->isClosing) return;
        if (!work->discarded.empty()) {
            auto discarded = std::exchange(work->discarded, {});
            lock.unlock();
            discarded.clear();
            lock.lock();
            continue;
        }
        const Request request = std::move(work->requests.front());
        work->requests.pop_front();
        lock.unlock();
        runUnlessOutOfMemory(request.serve);
        lock.lock();
    }
}

Result<std::shared_ptr<AUAudioUnit>> Lv2UnitHost::makeUnitSafely(const AudioComponentDescription& description
) {
    try {
        return makeUnit(description);
    } catch (const std::bad_alloc&) {
        return Error{"There is not enough memory to load the effect."};
    } catch (...) {
        return Error{"The effect failed while it was being loaded."};
    }
}

Result<std::shared_ptr<AUAudioUnit>> Lv2UnitHost::makeUnit(const AudioComponentDescription& description) {
    const auto& all = effects().plugins;
    const auto found = std::ranges::find_if(all, [&](const InstalledPlugin& plugin) {
        return matches(plugin.component.audioComponentDescription, description);
    });
    if (found == all.end()) return Error{"The effect is not installed."};
    auto described = readDescription(*found);
    if (!described) return described.error();

    auto shared = std::make_shared<const PluginDescription>(std::move(described).value());
    const InstanceSettings settings{.sampleRate = services->sampleRate.load()};
    PluginInstance::Owner instance;
    // The description decides on formats, so that an unusable plugin's code never runs.
    if (shared->audio.channelCount()) {
        auto made = PluginInstance::make(shared, services, settings);
        if (!made) return made.error();
        instance = std::move(made).value();
    }
    auto unit = std::make_unique<Lv2Unit>(std::move(shared), services, settings, std::move(instance));
    return std::shared_ptr<AUAudioUnit>(std::shared_ptr<Lv2Unit>(
        unit.release(),
        [loader = std::weak_ptr(work)](Lv2Unit* let) { discard(std::unique_ptr<AUAudioUnit>(let), loader); }
    ));
}

} // namespace orvane::platform::lv2
