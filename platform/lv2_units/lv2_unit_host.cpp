#include "platform/lv2_units/lv2_unit_host.h"

#include "platform/lv2_units/host_services.h"
#include "platform/lv2_units/lv2_unit.h"
#include "platform/lv2_units/plugin_bundle.h"
#include "platform/lv2_units/plugin_description.h"
#include "platform/lv2_units/plugin_instance.h"

#include <fmt/format.h>

#include <algorithm>
#include <new>
#include <optional>
#include <utility>

namespace orvane::platform {

using lv2_units::InstalledPlugin;

namespace {

bool matches(const AudioComponentDescription& component, const AudioComponentDescription& wanted) {
    const auto fits = [](std::uint32_t field, std::uint32_t asked) { return asked == 0 || field == asked; };
    const std::uint32_t mask = wanted.componentFlagsMask;
    return fits(component.componentType, wanted.componentType)
           && fits(component.componentSubType, wanted.componentSubType)
           && fits(component.componentManufacturer, wanted.componentManufacturer)
           && (component.componentFlags & mask) == (wanted.componentFlags & mask);
}

Result<lv2_units::PluginDescription> readDescription(const InstalledPlugin& installed) {
    lv2_units::PluginBundle bundle(installed.bundle);
    const LilvPlugin* const plugin = bundle.plugin(installed.uri);
    if (plugin == nullptr)
        return Error{fmt::format("\"{}\" is no longer installed.", installed.component.name)};
    return lv2_units::describe(bundle, plugin);
}

} // namespace

Lv2UnitHost::Lv2UnitHost(SystemLog& systemLog, std::string searchPath)
    : services(new lv2_units::HostServices{.log = systemLog}),
      path(std::move(searchPath)),
      loader([this] { serveRequests(); }) {}

Lv2UnitHost::~Lv2UnitHost() {
    {
        const std::scoped_lock lock(mutex);
        isClosing = true;
    }
    changed.notify_one();
    loader.join();
    for (const Request& request : requests)
        request.completion(nullptr, Error{"The effect was not loaded because the program is closing."});
}

std::vector<AVAudioUnitComponent>
Lv2UnitHost::componentsMatchingDescription(const AudioComponentDescription& description) {
    std::vector<AVAudioUnitComponent> components;
    for (const InstalledPlugin& plugin : plugins())
        if (matches(plugin.component.audioComponentDescription, description))
            components.push_back(plugin.component);
    return components;
}

void Lv2UnitHost::instantiate(
    const AudioComponentDescription& description, std::uint32_t /*options*/,
    InstantiationCompletion completion
) {
    {
        const std::scoped_lock lock(mutex);
        requests.push_back({description, std::move(completion)});
    }
    changed.notify_one();
}

const std::vector<InstalledPlugin>& Lv2UnitHost::plugins() {
    std::call_once(scanned, [this] { installed = lv2_units::scanForEffects(path, services->log); });
    return installed;
}

void Lv2UnitHost::serveRequests() {
    std::unique_lock lock(mutex);
    while (true) {
        changed.wait(lock, [this] { return isClosing || !requests.empty(); });
        if (isClosing) return;
        const Request request = std::move(requests.front());
        requests.pop_front();
        lock.unlock();
        auto made = makeUnitSafely(request.description);
        if (made)
            request.completion(std::move(made).value(), std::nullopt);
        else
            request.completion(nullptr, made.error());
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
    const auto& all = plugins();
    const auto found = std::ranges::find_if(all, [&](const InstalledPlugin& plugin) {
        return matches(plugin.component.audioComponentDescription, description);
    });
    if (found == all.end()) return Error{"The effect is not installed."};
    auto described = readDescription(*found);
    if (!described) return described.error();

    auto shared = std::make_shared<const lv2_units::PluginDescription>(std::move(described).value());
    auto instance =
        lv2_units::PluginInstance::make(shared, services, {.sampleRate = services->sampleRate.load()});
    if (!instance) return instance.error();
    return std::shared_ptr<AUAudioUnit>(
        std::make_shared<lv2_units::Lv2Unit>(std::move(shared), services, std::move(instance).value())
    );
}

} // namespace orvane::platform
